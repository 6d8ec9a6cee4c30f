#pragma once

#include <QColor>
#include <QLabel>

namespace tuppi {

/// One line of plain text that gives way: what does not fit ends in an ellipsis, and the whole is then the
/// tool tip (unless another tip was set). Line breaks are shown as blanks.
class ElidedLabel : public QLabel
{
    Q_OBJECT
public:
    explicit ElidedLabel(QWidget *parent = nullptr);

    void setColour(const QColor &colour);
    QColor colour() const { return m_colour; }
    void setElideMode(Qt::TextElideMode mode);
    /// The text as it is drawn at the present width.
    QString shownText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    QColor m_colour;
    Qt::TextElideMode m_elideMode = Qt::ElideRight;
};

/// Plain text that wraps at a preferred width and, where a number of lines is given, ends in an ellipsis
/// there.
class WrapLabel : public QLabel
{
    Q_OBJECT
public:
    explicit WrapLabel(QWidget *parent = nullptr);

    void setColour(const QColor &colour);
    void setPreferredWidth(int width);
    /// 0 for as many as it takes.
    void setMaximumLines(int lines);
    /// The lines as they are drawn at the present width.
    QString shownText() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    struct Lines;
    Lines breakLines(double width) const;

    QColor m_colour;
    int m_preferredWidth = 400;
    int m_maximumLines = 0;
};

/// A short note on a coloured ground, one blank on either side.
class BadgeLabel : public QLabel
{
    Q_OBJECT
public:
    explicit BadgeLabel(const QString &note, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;
};

/// The heading of a section: upper case, spaced out except in the scripts that spacing would tear apart. The
/// language is the interface's ("ar", "zh-Hans" …).
QLabel *SectionLabel(const QString &text, const QString &language, QWidget *parent = nullptr);

/// A wrapping line of help, at most 400 wide.
WrapLabel *hint(const QString &text, QWidget *parent = nullptr);

/// The view in a container that leaves room at the leading edge. Takes the view over.
QWidget *indent(QWidget *view, int by, QWidget *parent = nullptr);

} // namespace tuppi
