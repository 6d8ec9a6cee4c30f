#pragma once

#include "ui/MascotView.h"

#include <QHash>
#include <QPointer>

#include <functional>

namespace tuppi {

/// The animated mascots of the list, kept under the key of row and pose while rows come and go. It owns the
/// views that no row shows; a row that shows one hands it back with release(). Emptied entirely when a
/// look-up leaves it with 41 entries: what rows show then stays with them.
struct TuppiCache
{
    static constexpr qsizetype limit = 41;

    TuppiCache() = default;
    ~TuppiCache() { empty(); }
    Q_DISABLE_COPY_MOVE(TuppiCache)

    /// The kept view, taken out of wherever it is shown, or a new one; it becomes a child of the parent.
    MascotView *lookUp(const QString &key, QWidget *parent, const std::function<MascotView *()> &make);
    /// Takes a view back that a row no longer shows; deletes it when it is not kept.
    void release(MascotView *view);
    void empty();

    QHash<QString, QPointer<MascotView>> entries;
};

} // namespace tuppi
