#pragma once

#include <QLabel>

/** A line that ends in an ellipsis where there is no room for all of it. */
class ElidedLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ElidedLabel(const QString &name, QWidget *parent = nullptr);

    /** Room for a word, unless there is nothing to be read. */
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
};
