#include "ui/TuppiCache.h"

#include <algorithm>

namespace tuppi {

MascotView *TuppiCache::lookUp(const QString &key, QWidget *parent, const std::function<MascotView *()> &make)
{
    QPointer<MascotView> &entry = entries[key];
    if (!entry)
        entry = make();
    MascotView *view = entry;
    view->setParent(parent);
    if (entries.size() >= limit) {
        entries.remove(key); // the view in hand stays, whoever holds it
        empty();
    }
    return view;
}

void TuppiCache::release(MascotView *view)
{
    if (!view)
        return;
    view->hide();
    view->setParent(nullptr);
    const bool kept = std::any_of(entries.cbegin(), entries.cend(),
                                  [view](const QPointer<MascotView> &entry) { return entry == view; });
    if (!kept)
        view->deleteLater();
}

void TuppiCache::empty()
{
    for (const QPointer<MascotView> &view : std::as_const(entries)) {
        if (view && !view->parent())
            delete view.data();
    }
    entries.clear();
}

} // namespace tuppi
