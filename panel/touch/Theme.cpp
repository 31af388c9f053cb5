#include "touch/Theme.h"

#include <QApplication>
#include <QFont>
#include <QPalette>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace {

constexpr QSize designed(800, 480);
constexpr double leastScale = 0.75; // anything smaller could not be read or touched

const Theme *currentTheme = nullptr;
double scale = 1;
bool isSmall = false;

const char sheet[] = R"(
QWidget { background: @background; color: @text; }
QLabel { background: transparent; }
QLabel[role="title"] { font-size: 20px; font-weight: bold; }
QLabel[role="quiet"] { color: @quiet; font-size: 14px; }
QLabel[role="alarm"] { color: @alarm; font-size: 14px; }
QWidget[role="card"], QListView, QTextBrowser, QLineEdit {
    background: @surface; border: 1px solid @line; border-radius: 6px; }
QLineEdit { padding: 0 12px; min-height: 46px; font-size: 18px;
    selection-background-color: @accent; selection-color: @onAccent; }
QLineEdit[isEmpty="true"] { color: @quiet; }
QLineEdit:focus { border: 2px solid @accent; }
QTextBrowser { padding: 8px; }
QListView { outline: none; }
QPushButton { background: @surface; border: 1px solid @line; border-radius: 6px;
    min-height: 46px; padding: 0 12px; font-size: 16px; }
QPushButton:pressed { background: @line; }
QPushButton:disabled { color: @line; }
QPushButton:checked { background: @accent; color: @onAccent; border-color: @accent; }
QPushButton[role="field"] { min-height: 54px; }
QPushButton[role="primary"] { background: @accent; color: @onAccent; border-color: @accent;
    font-weight: bold; }
QPushButton[role="primary"]:disabled { background: @line; border-color: @line; color: @quiet; }
QPushButton[role="danger"] { color: @alarm; border-color: @alarm; }
QPushButton[role="danger"]:disabled { color: @line; border-color: @line; }
QPushButton[role="navigation"] { background: transparent; border: none; border-radius: 0;
    text-align: left; padding: 0 8px 0 16px; font-size: 15px; }
QPushButton[role="navigation"]:checked { background: @background; color: @accent;
    border-left: 4px solid @accent; padding-left: 12px; font-weight: bold; }
QPushButton[role="recording"] { background: transparent; border: none; color: @alarm;
    font-size: 15px; font-weight: bold; padding: 0 4px; }
QPushButton[role="key"], QPushButton[role="lastKey"] { font-size: 20px; padding: 0;
    min-height: 42px; }
QPushButton[role="lastKey"] { background: @accent; color: @onAccent; }
QWidget#rail, QWidget#header { background: @surface; }
QWidget#header QLabel { font-size: 15px; }
QWidget#keyboard { background: @line; }
QScrollBar:vertical { background: transparent; width: 6px; margin: 0; }
QScrollBar::handle:vertical { background: @line; min-height: 40px; border-radius: 3px; }
QScrollBar::add-line, QScrollBar::sub-line, QScrollBar::add-page, QScrollBar::sub-page {
    background: none; height: 0; }
QSlider::groove:horizontal { background: @line; height: 6px; border-radius: 3px; }
QSlider::sub-page:horizontal { background: @accent; border-radius: 3px; }
QSlider::handle:horizontal { background: @surface; border: 1px solid @line; border-radius: 6px;
    width: 44px; margin: -20px 0; }
QProgressBar { background: @line; border: none; border-radius: 3px; max-height: 6px; }
QProgressBar::chunk { background: @accent; border-radius: 3px; }
)";

QString styleSheet(const Theme &theme)
{
    const struct
    {
        const char *name;
        const QColor &colour;
    } names[] = {
        {"@background", theme.background},
        {"@surface", theme.surface},
        {"@line", theme.line},
        {"@text", theme.text},
        {"@quiet", theme.quiet},
        {"@accent", theme.accent},
        {"@onAccent", theme.onAccent},
        {"@alarm", theme.alarm},
    };
    QString text = QString::fromLatin1(sheet);
    for (const auto &entry : names)
        text.replace(QLatin1String(entry.name), entry.colour.name());
    return Theme::scaled(text);
}

} // namespace

const Theme &Theme::light()
{
    static const Theme theme {"#eef0f1", "#ffffff", "#cdd3d6", "#1b2326",
                              "#667378", "#00707a", "#ffffff", "#b3261e"};
    return theme;
}

const Theme &Theme::dark()
{
    static const Theme theme {"#12171a", "#1c2327", "#37424a", "#e8edef",
                              "#93a1a8", "#3fb8c2", "#0b1113", "#ff7a6b"};
    return theme;
}

const Theme &Theme::current()
{
    return currentTheme ? *currentTheme : light();
}

void Theme::use(const Theme &theme)
{
    currentTheme = &theme;
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(px(16));
    QApplication::setFont(font);
    QPalette palette;
    palette.setColor(QPalette::Window, theme.background);
    palette.setColor(QPalette::Base, theme.surface);
    palette.setColor(QPalette::Text, theme.text);
    palette.setColor(QPalette::WindowText, theme.text);
    palette.setColor(QPalette::Link, theme.accent);
    palette.setColor(QPalette::PlaceholderText, theme.quiet);
    QApplication::setPalette(palette);
    qApp->setStyleSheet(styleSheet(theme));
}

void Theme::fit(const QSize &window)
{
    const double fitting = std::min(double(window.width()) / designed.width(),
                                    double(window.height()) / designed.height());
    scale = std::max(fitting, leastScale);
    isSmall = fitting < leastScale;
    use(current());
}

bool Theme::isCompact()
{
    return isSmall;
}

int Theme::px(int length)
{
    // A line is never thinner than one pixel.
    return length == 0 ? 0 : std::max(1, int(std::lround(length * scale)));
}

QString Theme::scaled(const QString &unscaled)
{
    static const QRegularExpression length(QStringLiteral("(\\d+)px"));
    QString text = unscaled;
    decltype(text.size()) from = 0;
    for (;;) {
        const QRegularExpressionMatch match = length.match(text, from);
        if (!match.hasMatch())
            return text;
        const QString replaced =
            QString::number(px(match.captured(1).toInt())) + QLatin1String("px");
        text.replace(match.capturedStart(), match.capturedLength(), replaced);
        from = match.capturedStart() + replaced.size();
    }
}
