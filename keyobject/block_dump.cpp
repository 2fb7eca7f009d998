#include "keyobject/block_dump.h"

#include "imaging/files/bmp_writer.h"
#include "platform/files.h"

namespace zck {

void DumpBlocks(const WorkingImage &image) noexcept {
    if (!SystemHasDrives()) return;
    const Z_VID_PROPS &props = image.Props();
    // A failure has nobody to go to.
    WriteBmp(ZCK_TEXT("F:\\CK.bmp"), props.fccType, props.nWidth, props.nHeight, 0, image.Row(0));
}

}    // namespace zck
