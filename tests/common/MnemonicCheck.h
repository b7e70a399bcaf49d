#pragma once

#include <QAbstractButton>
#include <QGroupBox>
#include <QLabel>
#include <QMap>
#include <QStringList>
#include <QTabBar>
#include <QTabWidget>
#include <QWidget>

// Checks of keyboard mnemonics ("&File") shared by the menu and dialog tests.
namespace MnemonicCheck {

// The letter after a lone "&", lower case; a null character when there is none.
inline QChar Mnemonic(const QString& text)
{
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text.at(i) != QLatin1Char('&'))
            continue;
        if (text.at(i + 1) == QLatin1Char('&')) {
            ++i;
            continue;
        }
        return text.at(i + 1).toLower();
    }
    return {};
}

// Every mnemonic among what the dialog shows now is used once, and every label that shows
// one leads somewhere (a label without a buddy would print the ampersand). Only what is
// visible counts: the pages of a tabbed sheet each have the tab bar's letters to share.
inline QStringList Problems(QWidget& dialog)
{
    QStringList problems;
    QMap<QChar, QString> seen;
    auto take = [&](const QString& text) {
        const QChar key = Mnemonic(text);
        if (key.isNull())
            return;
        if (seen.contains(key))
            problems << QStringLiteral("'%1' in \"%2\" and \"%3\"").arg(key).arg(seen.value(key), text);
        seen.insert(key, text);
    };
    for (QLabel* label : dialog.findChildren<QLabel*>()) {
        if (!label->isVisibleTo(&dialog) || Mnemonic(label->text()).isNull())
            continue;
        if (!label->buddy())
            problems << QStringLiteral("\"%1\" shows its ampersand").arg(label->text());
        take(label->text());
    }
    for (QAbstractButton* button : dialog.findChildren<QAbstractButton*>()) {
        if (button->isVisibleTo(&dialog))
            take(button->text());
    }
    for (QGroupBox* group : dialog.findChildren<QGroupBox*>()) {
        if (group->isVisibleTo(&dialog))
            take(group->title());
    }
    for (QTabBar* tabs : dialog.findChildren<QTabBar*>()) {
        if (!tabs->isVisibleTo(&dialog))
            continue;
        for (int i = 0; i < tabs->count(); ++i)
            take(tabs->tabText(i));
    }
    return problems;
}

// The same for every page of every tabbed widget the dialog holds, page by page.
inline QStringList ProblemsOnEveryPage(QWidget& dialog)
{
    QStringList problems = Problems(dialog);
    for (QTabWidget* tabs : dialog.findChildren<QTabWidget*>()) {
        const int shown = tabs->currentIndex();
        for (int i = 0; i < tabs->count(); ++i) {
            tabs->setCurrentIndex(i);
            for (const QString& problem : Problems(dialog))
                problems << tabs->tabText(i) + QStringLiteral(": ") + problem;
        }
        tabs->setCurrentIndex(shown);
    }
    problems.removeDuplicates();
    return problems;
}

} // namespace MnemonicCheck
