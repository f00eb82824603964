#include "foundation/Version.h"

QString applicationVersion()
{
    return QStringLiteral(QUILLPOST_VERSION);
}
