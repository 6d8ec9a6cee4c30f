// A window for the test of scripts/accessibility-walk. With "good" all of it can be used without seeing it;
// any other argument names the one thing that is wrong.

#include <QAccessibleWidget>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

/// Has the role of a button but nothing that a click could be replaced by.
class DeadButton : public QWidget
{
    Q_OBJECT
public:
    using QWidget::QWidget;
};

class DeadButtonInterface : public QAccessibleWidget
{
public:
    explicit DeadButtonInterface(QWidget *widget)
        : QAccessibleWidget(widget, QAccessible::Button)
    {
    }
};

QAccessibleInterface *makeInterface(const QString &, QObject *object)
{
    auto *button = qobject_cast<DeadButton *>(object);
    return button ? new DeadButtonInterface(button) : nullptr;
}

void addStart(QVBoxLayout *rows, const QString &wrong)
{
    auto *start = new QPushButton(wrong == u"nameless-button"_s ? QString() : u"Start"_s);
    rows->addWidget(start);
    if (wrong == u"unfocusable-button"_s)
        start->setFocusPolicy(Qt::NoFocus);
    if (wrong == u"twins"_s)
        rows->addWidget(new QPushButton(u"Start"_s));
}

} // namespace

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(u"accessible-program"_s);
    QAccessible::installFactory(&makeInterface);
    const QString wrong = QApplication::arguments().value(1);

    QMainWindow window;
    if (wrong != u"nameless-window"_s)
        window.setWindowTitle(u"Accessible"_s);
    QMenu *menu = window.menuBar()->addMenu(u"&File"_s);
    menu->addAction(u"&Open…"_s);
    menu->addSeparator();
    menu->addAction(wrong == u"nameless-menu-item"_s ? QString() : u"&Quit"_s)->setCheckable(true);

    auto *scroll = new QScrollArea;
    scroll->setFocusPolicy(Qt::NoFocus);
    auto *page = new QWidget;
    auto *rows = new QVBoxLayout(page);
    addStart(rows, wrong);
    auto *off = new QPushButton(u"Not now"_s);
    off->setEnabled(false);
    rows->addWidget(off);
    rows->addWidget(new QCheckBox(u"Quick"_s));
    rows->addWidget(new QLabel(u"A text with\ntwo lines"_s));
    rows->addWidget(new QWidget); // decoration
    auto *box = new QComboBox;
    box->addItems({u"Finnish"_s, u"Swedish"_s});
    auto *label = new QLabel(u"Language"_s);
    if (wrong != u"unlabelled-box"_s)
        label->setBuddy(box);
    rows->addWidget(label);
    rows->addWidget(box);
    auto *entry = new QLineEdit;
    if (wrong != u"nameless-entry"_s)
        entry->setAccessibleName(u"Title"_s);
    rows->addWidget(entry);
    auto *hidden = new QPushButton; // without a name, and not there for anybody
    rows->addWidget(hidden);
    hidden->hide();
    auto *dead = new DeadButton;
    dead->setAccessibleName(u"Dead"_s);
    dead->setFocusPolicy(Qt::StrongFocus);
    dead->setFixedSize(50, 600); // so that there is something to scroll
    rows->addWidget(dead);
    dead->setVisible(wrong == u"dead-button"_s);
    auto *plain = new QWidget;
    plain->setFocusPolicy(Qt::StrongFocus);
    plain->setAccessibleName(wrong == u"neither"_s ? QString() : u"Plain"_s);
    rows->addWidget(plain);
    plain->setVisible(wrong == u"no-role"_s || wrong == u"neither"_s);
    scroll->setWidget(page);
    window.setCentralWidget(scroll);
    window.resize(300, 200);
    window.show();
    QWidget another;
    another.setWindowTitle(u"Plain"_s);
    another.setVisible(wrong == u"plain-window"_s);
    return QApplication::exec();
}

#include "AccessibleProgram.moc"
