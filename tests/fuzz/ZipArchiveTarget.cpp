// A zip file as it is. The first byte says whether a password is given.
#include "FuzzTarget.h"
#include "UnpackedFolder.h"

FUZZ_TARGET(ZipArchive)
{
    if (input.isEmpty())
        return;
    const QString password = input.front() == 'p' ? QStringLiteral("secret") : QString();
    (void)unpackAndLook(input.sliced(1).toByteArray(), password, 1024 * 1024);
}
