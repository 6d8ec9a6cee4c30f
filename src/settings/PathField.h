#pragma once

#include <QLineEdit>

namespace tuppi {

/// A path to read and to copy. While it has the keyboard the whole of it is there to be selected, otherwise what
/// does not fit is left out in the middle.
class PathField : public QLineEdit
{
    Q_OBJECT
public:
    explicit PathField(int mostWidth, QWidget *parent = nullptr);

    /// `shown` stands in the field, `tip` is the path in full.
    void setPath(const QString &shown, const QString &tip);
    QString path() const { return m_path; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showPath();

    int m_mostWidth;
    QString m_path;
};

} // namespace tuppi
