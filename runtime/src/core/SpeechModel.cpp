#include "core/SpeechModel.h"

#include <QFileInfo>
#include <QStringList>

using namespace Qt::StringLiterals;

namespace engine {

std::optional<SpeechModel> findSpeechModel()
{
    QStringList folders{u"/usr/share/pocketsphinx/model/en-us"_s,
                        u"/usr/local/share/pocketsphinx/model/en-us"_s};
    if (const QString chosen = qEnvironmentVariable("TUPPI_POCKETSPHINX_MODEL"); !chosen.isEmpty())
        folders = {chosen};
    for (const QString &folder : folders) {
        const SpeechModel model{folder + u"/en-us"_s, folder + u"/en-us.lm.bin"_s,
                                folder + u"/cmudict-en-us.dict"_s};
        if (QFileInfo::exists(model.acoustic + u"/mdef"_s) && QFileInfo::exists(model.words) &&
            QFileInfo::exists(model.dictionary))
            return model;
    }
    return std::nullopt;
}

} // namespace engine
