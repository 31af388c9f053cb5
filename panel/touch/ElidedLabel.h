#pragma once

#include <QLabel>

/** A line of text that ends in an ellipsis if it is too long for the space. */
class ElidedLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ElidedLabel(const QString &name, QWidget *parent = nullptr);

    /** Space for about one word; none for an empty text. */
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
