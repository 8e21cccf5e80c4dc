#include "network/vonetworkintf.h"

// Makes every record reachable from an exported function: of the library's own functions some name
// a record only inside a list, through which abidiff does not look.
Q_DECL_EXPORT void abiRecords(OSS_SIGN_INFO *, TTSParams *, DubInfo *, BgmInfo *, LoginQrCode *,
                              UserInfo *, UpdateInfo *)
{
}
