#include "Fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    readInput(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    return 0;
}
