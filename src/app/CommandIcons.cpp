#include "CommandIcons.h"

#include "framework/CommandIds.h"

#include <QFileInfo>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>
#include <QStyle>

namespace {

struct IconEntry
{
    int id;
    const char* theme;        // freedesktop icon name
    int standard;             // QStyle::StandardPixmap, or -1
    const char* glyph;        // drawn when neither is there
};

// clang-format off
constexpr IconEntry kIcons[] = {
    {Cmd::FileNew,            "document-new",          QStyle::SP_FileIcon,            "+"},
    {Cmd::FileOpen,           "document-open",         QStyle::SP_DialogOpenButton,    "O"},
    {Cmd::FileSave,           "document-save",         QStyle::SP_DialogSaveButton,    "S"},
    {Cmd::FileSaveAll,        "document-save-all",     -1,                             "SA"},
    {Cmd::FileClose,          "window-close",          QStyle::SP_DialogCloseButton,   "x"},
    {Cmd::FilePrint,          "document-print",        -1,                             "P"},
    {Cmd::FilePrintPreview,   "document-print-preview", -1,                            "Pv"},
    {Cmd::EditUndo,           "edit-undo",             -1,                             "\u21B6"},
    {Cmd::EditRedo,           "edit-redo",             -1,                             "\u21B7"},
    {Cmd::EditCut,            "edit-cut",              -1,                             "\u2702"},
    {Cmd::EditCopy,           "edit-copy",             -1,                             "C"},
    {Cmd::EditPaste,          "edit-paste",            -1,                             "V"},
    {Cmd::EditFind,           "edit-find",             -1,                             "F"},
    {Cmd::EditReplace,        "edit-find-replace",     -1,                             "R"},
    {Cmd::EditFindNext,       "go-down",               QStyle::SP_ArrowDown,           "\u2193"},
    {Cmd::EditFindPrevious,   "go-up",                 QStyle::SP_ArrowUp,             "\u2191"},
    {Cmd::FindInFiles,        "system-search",         QStyle::SP_FileDialogContentsView, "FF"},
    {Cmd::EditGoto,           "go-jump",               -1,                             "G"},
    {Cmd::EditIndentRight,    "format-indent-more",    -1,                             "\u21E5"},
    {Cmd::EditIndentLeft,     "format-indent-less",    -1,                             "\u21E4"},
    {Cmd::BookmarkToggle,     "bookmark-new",          -1,                             "B"},
    {Cmd::BookmarkNext,       "go-next",               -1,                             "B\u2193"},
    {Cmd::BookmarkPrevious,   "go-previous",           -1,                             "B\u2191"},
    {Cmd::BookmarkClear,      "edit-clear",            -1,                             "B\u00D7"},
    {Cmd::NavigateBack,       "go-previous",           QStyle::SP_ArrowLeft,           "\u2190"},
    {Cmd::NavigateForward,    "go-next",               QStyle::SP_ArrowRight,          "\u2192"},
    {Cmd::ViewWordWrap,       "format-justify-fill",   -1,                             "\u21B5"},
    {Cmd::ViewWhitespace,     "format-text-blank",     -1,                             "\u00B7"},
    {Cmd::ViewLineEndings,    "format-text-eol",       -1,                             "\u00B6"},
    {Cmd::ViewLineNumbers,    "format-list-ordered",   -1,                             "#"},
    {Cmd::ViewFont,           "preferences-desktop-font", -1,                          "A"},
    {Cmd::AppAbout,           "help-about",            QStyle::SP_MessageBoxInformation, "?"},
    {Cmd::CheckForUpdates,    "system-software-update", -1,                            "\u21BB"},
};
// clang-format on

// Two of an icon, one behind the other: "all of them".
QIcon Doubled(const QIcon& single)
{
    QIcon icon;
    for (const int size : {16, 24, 32}) {
        const int part = size * 3 / 4;
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.drawPixmap(size - part, 0, single.pixmap(part, part));
        painter.drawPixmap(0, size - part, single.pixmap(part, part));
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

// A glyph on a rounded square, in the palette's text colour, at both toolbar sizes.
QIcon DrawGlyph(const QString& glyph, const QStyle* style)
{
    const QPalette palette = style ? style->standardPalette() : QPalette();
    QIcon icon;
    for (const int size : {16, 24, 32}) {
        QPixmap pixmap(size, size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF frame(0.5, 0.5, size - 1.0, size - 1.0);
        painter.setPen(QPen(palette.color(QPalette::Mid), 1.0));
        painter.setBrush(palette.color(QPalette::Base));
        painter.drawRoundedRect(frame, size / 6.0, size / 6.0);
        QFont font = painter.font();
        font.setBold(true);
        font.setPixelSize(glyph.size() > 1 ? size * 5 / 12 : size * 2 / 3);
        painter.setFont(font);
        painter.setPen(palette.color(QPalette::Text));
        painter.drawText(frame, Qt::AlignCenter, glyph);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

} // namespace

QIcon CommandIcons::ForCommand(int commandId, const QStyle* style)
{
    for (const IconEntry& entry : kIcons) {
        if (entry.id != commandId)
            continue;
        const QString theme = QString::fromLatin1(entry.theme);
        if (QIcon::hasThemeIcon(theme))
            return QIcon::fromTheme(theme);
        // Themes rarely draw "save all"; two save icons say it.
        if (commandId == Cmd::FileSaveAll && QIcon::hasThemeIcon(QStringLiteral("document-save")))
            return Doubled(QIcon::fromTheme(QStringLiteral("document-save")));
        if (entry.standard >= 0 && style)
            return style->standardIcon(static_cast<QStyle::StandardPixmap>(entry.standard));
        return DrawGlyph(QString::fromUtf8(entry.glyph), style);
    }
    return {};
}

void CommandIcons::UseDesktopTheme()
{
    // Full-colour themes first: their action icons read at toolbar sizes.
    static const char* const kThemes[] = {"Adwaita", "breeze", "Tango", "oxygen"};
    QString installed;
    for (const char* name : kThemes) {
        for (const QString& root : QIcon::themeSearchPaths()) {
            if (QFileInfo::exists(root + QLatin1Char('/') + QLatin1String(name) + QStringLiteral("/index.theme"))) {
                installed = QLatin1String(name);
                break;
            }
        }
        if (!installed.isEmpty())
            break;
    }
    if (installed.isEmpty())
        return;
    const QString current = QIcon::themeName();
    if (current.isEmpty() || current == QLatin1String("hicolor"))
        QIcon::setThemeName(installed);
    else if (QIcon::fallbackThemeName().isEmpty() || QIcon::fallbackThemeName() == QLatin1String("hicolor"))
        QIcon::setFallbackThemeName(installed);
}
