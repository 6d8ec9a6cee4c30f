#pragma once

#include <QJsonObject>
#include <QStringList>
#include <QVariant>
#include <QWidget>

#include <functional>
#include <memory>

namespace tuppi {

/// What a web view is made for.
struct WebViewSetup
{
    QString page;         ///< full path of the page
    QString folder;       ///< canonical; the page reaches files inside it and nothing else
    QStringList scripts;  ///< run before the page's own, in its main frame
};

/// A page in a web engine that reaches no network and no file outside its folder. The functions are called on
/// the main thread, and only where they are set.
class WebView : public QWidget
{
public:
    enum class Command { Cut, Copy, Paste, SelectAll };

    using QWidget::QWidget;

    /// Loads the page, anew when it is there already.
    virtual void load() = 0;
    virtual void run(const QString &script) = 0;
    /// Runs the script and calls back with its value; never when the page hangs or is still loading.
    virtual void ask(const QString &script, std::function<void(const QVariant &value)> answered) = 0;
    /// Lets the page end in its own way; onUnloaded follows, unless the page hangs.
    virtual void unload() = 0;
    virtual void perform(Command command) = 0;
    virtual void setZoom(double factor) = 0;

    /// The page posted an object on the channel "tuppi".
    std::function<void(const QJsonObject &body)> onMessage;
    /// The page is there, and its scripts have run.
    std::function<void()> onLoaded;
    /// Its process is gone, though nobody asked for that.
    std::function<void()> onCrash;
    std::function<void()> onUnloaded;
    /// A context menu is wanted at that place of the screen, offering these commands.
    std::function<void(const QPoint &place, const QList<Command> &commands)> onMenu;
};

/// Makes web views. It outlives them.
class WebViews
{
public:
    virtual ~WebViews() = default;
    virtual WebView *make(const WebViewSetup &setup, QWidget *parent) = 0;
};

} // namespace tuppi
