#pragma once

#include "core/Arguments.h"

namespace engine {

// What `models` takes. The engine looks at it before it becomes the program that does it.
inline Syntax modelsSyntax()
{
    return {u"models [add --name=NAME --kind=whisper --repo=OWNER/MODEL[:FILE] | remove --id=ID | "
            u"text-model --name=NAME] [--json]",
            0,
            1,
            {{u"--name", Option::Value},
             {u"--kind", Option::Value},
             {u"--repo", Option::Value},
             {u"--id", Option::Value},
             {u"--json"}}};
}

} // namespace engine
