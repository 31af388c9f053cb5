#include "touch/PercentSlider.h"

#include "touch/Buttons.h"
#include "touch/Theme.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSlider>
#include <QVariant>

namespace {

constexpr int step = 10; // percent
constexpr int stepWidth = 56;
constexpr int figureWidth = 76;

} // namespace

PercentSlider::PercentSlider(const QString &name, int least, QWidget *parent)
    : QWidget(parent)
    , m_slider(new QSlider(Qt::Horizontal))
    , m_figure(new QLabel)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(Theme::gap());
    const auto addStep = [&](const char *part, const QString &text, int change) {
        auto *button = new TouchButton(name + QLatin1String(part));
        button->setText(text);
        button->setFixedWidth(Theme::px(stepWidth));
        connect(button, &QPushButton::clicked, this,
                [this, change] { m_slider->setValue(m_slider->value() + change); });
        row->addWidget(button);
    };
    m_slider->setObjectName(name + QLatin1String(".slider"));
    m_slider->setRange(least, 100);
    m_slider->setPageStep(step);
    m_slider->setMinimumHeight(Theme::target());
    m_slider->setFocusPolicy(Qt::NoFocus);
    m_figure->setObjectName(name + QLatin1String(".percent"));
    m_figure->setProperty("role", QStringLiteral("title"));
    m_figure->setFixedWidth(Theme::px(figureWidth));
    m_figure->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    addStep(".less", QStringLiteral("\u2212"), -step);
    row->addWidget(m_slider, 1);
    addStep(".more", QStringLiteral("+"), +step);
    row->addWidget(m_figure);
    connect(m_slider, &QSlider::valueChanged, this, [this](int percent) {
        showFigure();
        emit changed(percent);
    });
}

void PercentSlider::setPercent(int percent)
{
    const QSignalBlocker blocker(m_slider);
    m_slider->setValue(percent);
    showFigure();
}

void PercentSlider::showFigure()
{
    m_figure->setText(QStringLiteral("%1 %").arg(m_slider->value()));
}
