#include "ui/Stage.h"

#include "ui/RowView.h"

namespace tuppi {

RowView *Stage::makeRow(QWidget *parent)
{
    return new RowView({sweep, mascots, cache}, parent);
}

} // namespace tuppi
