#pragma once

class QString;

namespace engine {

// How many decoders may work side by side: one for each core that this process may use, as far as there is
// memory for them, but at least one. TUPPI_DECODERS in the environment asks for fewer.
int decodersAllowed();

// The rule behind it. `asked` is the text of the variable; an availableBytes of 0 is not known.
int decodersFor(int cores, long long availableBytes, const QString &asked);

} // namespace engine
