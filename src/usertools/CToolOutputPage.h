#pragma once

#include "shell/IOutputPage.h"
#include "usertools/OutputLink.h"

#include <QListView>
#include <QObject>
#include <QPointer>
#include <functional>

class CToolResultsModel;
class QAction;

class QModelIndex;
class QWidget;

// The "Tool Results" page of the Output bar: a list of the running tool's lines that
// follows the end while the user has not scrolled away. A line naming a file place
// opens it on a double click, Enter, or F4 and Shift+F4 for the next and previous.
class CToolOutputPage : public QObject, public IOutputPage
{
    Q_OBJECT
public:
    explicit CToolOutputPage(QObject* parent = nullptr);
    ~CToolOutputPage() override;

    QString Title() const override;
    QWidget* Widget() override;
    void Clear() override;
    bool GoToNextLink(bool forward) override;

    CToolResultsModel* Model() const { return m_model; }
    QListView* View() const { return m_view; }
    // Opens a link's place; set by whoever knows how to open files.
    void SetOpenHandler(std::function<void(const OutputLink&)> open) { m_open = std::move(open); }
    // Extra entries of the context menu (Stop Tool).
    void AddContextAction(QAction* action);
    // Opens the link on a row; false when the row names no place.
    bool ActivateRow(int row);

private:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void ScrollIfFollowing();
    void CopySelection() const;

    CToolResultsModel* m_model;
    // The bar that shows the widget may delete it first, at the window's end.
    QPointer<QWidget> m_widget;
    QPointer<QListView> m_view;
    std::function<void(const OutputLink&)> m_open;
    bool m_follow = true;
    bool m_scrollPending = false;
};
