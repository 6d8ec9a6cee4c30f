#pragma once

#include <QCheckBox>

namespace tuppi {

/// A check box with a heavy title, which wraps when it has to. The title begins `titleIndent` from the leading
/// edge.
class TickBox : public QCheckBox
{
    Q_OBJECT
public:
    static constexpr int titleIndent = 22;

    explicit TickBox(const QString &title, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    bool hitButton(const QPoint &position) const override;
    void paintEvent(QPaintEvent *event) override;

private:
    QRect titleRect(int width) const;

    QString m_title;
};

} // namespace tuppi
