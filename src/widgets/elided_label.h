// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>

/// A label of one line that ends in "…" where its room does. Its text is plain, never markup; the
/// tooltip shows it whole while it does not fit.
class ElidedLabel : public QLabel
{
    Q_OBJECT

public:
    explicit ElidedLabel(QWidget* parent = nullptr);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownText() const;
};
