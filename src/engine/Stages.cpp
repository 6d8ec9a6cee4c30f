#include "engine/Stages.h"

namespace tuppi {

using namespace Qt::StringLiterals;

bool IsActiveStage(const QString &status)
{
    return status == "queued"_L1 || status == "transcribing"_L1 || status == "analyzing"_L1 || status == "cleaning"_L1;
}

} // namespace tuppi
