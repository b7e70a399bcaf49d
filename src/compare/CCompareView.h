#pragma once

#include "compare/CharDiff.h"
#include "compare/CompareModel.h"
#include "compare/DiffTypes.h"

#include <QFutureWatcher>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <atomic>
#include <functional>
#include <memory>

class CCompareDoc;
class CComparePane;
class COverviewStrip;
class QLabel;
class QGridLayout;
class QProgressDialog;
class QsciScintillaBase;
struct CompareSource;

// Two files side by side: the panes, the strip that maps the differences, and the work
// of comparing them. The diff runs on a worker thread; a long one shows its progress and
// can be cancelled. Edits in either pane are compared again after a pause.
class CCompareView : public QWidget
{
    Q_OBJECT
public:
    using Colourer = std::function<void(QsciScintillaBase& pane, const QString& path)>;

    CCompareView(CCompareDoc* document, const CompareSource& left, const CompareSource& right,
                 const DiffOptions& options, const Colourer& colourer = {}, QWidget* parent = nullptr);
    ~CCompareView() override;

    CComparePane* Pane(int side) const { return m_panes[side]; }
    const CompareModel& Model() const { return m_model; }

    void SetOptions(const DiffOptions& options);
    DiffOptions Options() const { return m_options; }

    // Compares the panes' present text again.
    void Recompare();
    bool IsComparing() const { return m_watcher.isRunning(); }
    // For tests and the benchmark: runs the event loop until the diff is shown.
    bool WaitForCompare(int timeoutMs = 30000);

    int DifferenceCount() const { return m_model.DifferenceCount(); }
    // The difference the caret is in or was last taken to; -1 when none.
    int CurrentDifference() const { return m_current; }
    void GoToDifference(int index);
    bool HasNextDifference() const;
    bool HasPreviousDifference() const;
    void NextDifference();
    void PreviousDifference();

    // Copies the current difference's lines from one side over the other's.
    bool CanCopyTo(int side) const;
    void CopyTo(int side);
    void SwapSides();

    // Writes the edited sides in their own encodings; false when a write failed.
    bool SaveModifiedSides();
    bool SaveSide(int side);

    QString StatusText() const { return m_status; }

Q_SIGNALS:
    void statusTextChanged(const QString& text);
    void compared();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    // A theme change: the panes take the new colours.
    void changeEvent(QEvent* event) override;

private:
    struct Result;
    void StartCompare();
    void OnCompareFinished();
    void ShowResult(const Result& result);
    void SyncScroll(int from);
    void UpdateStrip();
    void UpdateLabels();
    void SetStatus(const QString& text);
    void OnTextChanged(int side);
    int CaretRow() const;
    bool CaretAtCurrent() const;
    void LayOutPanes();

    CCompareDoc* m_document;
    DiffOptions m_options;
    Colourer m_colourer;
    CComparePane* m_panes[2] = {nullptr, nullptr};
    QLabel* m_labels[2] = {nullptr, nullptr};
    COverviewStrip* m_strip = nullptr;
    QGridLayout* m_grid = nullptr;
    CompareModel m_model;
    int m_current = -1;
    int m_caretAt[2] = {-1, -1};
    int m_focusSide = 0;
    bool m_syncing = false;
    bool m_filling = false;
    bool m_identicalBytes = false;
    QString m_status;

    QFutureWatcher<std::shared_ptr<Result>> m_watcher;
    std::shared_ptr<std::atomic<bool>> m_cancel;
    QPointer<QProgressDialog> m_progress;
    bool m_compareAgain = false;
    QTimer m_refreshTimer;
    // The texts as read, shared with the first diff so that it needs no copies.
    QByteArray m_initialText[2];
};
