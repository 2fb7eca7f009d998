// Pictures whose field order changes on the way.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "imaging/colour/convert.h"
#include "platform/status.h"
#include "tests/imaging/colour/model.h"

namespace zck {
namespace {

using test::Bytes;
using test::ModelConvert;
using test::ModelPicture;
using test::ModelRecord;
using test::Picture;

// Row y of the picture, padding included, as far as the memory goes.
Bytes RowOf(const Picture &p, int64_t y) {
    const int64_t at = p.first + y * p.step;
    const auto end = std::min<int64_t>(at + std::abs(p.step), static_cast<int64_t>(p.memory.size()));
    return Bytes(p.memory.begin() + at, p.memory.begin() + end);
}

void PutRow(Picture &p, int64_t y, const Bytes &row) {
    const int64_t at = p.first + y * p.step;
    const auto bytes = std::min<int64_t>(static_cast<int64_t>(row.size()), static_cast<int64_t>(p.memory.size()) - at);
    std::copy(row.begin(), row.begin() + bytes, p.memory.begin() + at);
}

int32_t Sign(eZInterlace i) { return i == eZI_Field1First ? 1 : i == eZI_Field2First ? -1 : 0; }

// The picture moves by a line; then one line is repeated with its padding.
void Expect(Picture src, Picture &dst, int32_t width, int32_t rows, int32_t d) {
    if (d == 0 || rows < 2) return ModelConvert(src, dst, width, rows);
    Picture moved = dst;
    if (d < 0)
        moved.first += moved.step;
    else
        src.first += src.step;
    ModelConvert(src, moved, width, rows - 1);
    dst.memory = moved.memory;
    if (d < 0)
        PutRow(dst, 0, RowOf(dst, 1));
    else
        PutRow(dst, rows - 1, RowOf(dst, rows - 2));
}

TEST(FieldOrder, EveryCombinationOfOrdersFormatsAndDirections) {
    const eZFCC formats[] = {eZFCC_RGB32, eZFCC_RGB24, eZFCC_UYVY, eZFCC_YUY2, eZFCC_v210};
    const eZInterlace orders[] = {eZI_Default, eZI_Field1First, eZI_Field2First, eZI_Progressive, eZI_Inverse, eZI_OneField};
    int32_t repaired = 0;
    for (const eZFCC from : formats)
        for (const eZFCC to : formats)
            for (const eZInterlace si : orders)
                for (const eZInterlace ti : orders)
                    for (const int32_t sh : {5, -5})
                        for (const int32_t th : {5, -5}) {
                            Z_VID_PROPS sp = ModelRecord(from, 8, sh, 4);
                            Z_VID_PROPS tp = ModelRecord(to, 8, th, 8);
                            sp.eInterlace = si;
                            tp.eInterlace = ti;
                            const Picture source = ModelPicture(sp, 1, false);
                            Picture target = ModelPicture(tp, 2, false);
                            Bytes found = target.memory;
                            const bool rgb = to == eZFCC_RGB32 || to == eZFCC_RGB24;
                            int32_t d = (Sign(si) - Sign(ti)) * (rgb && th > 0 ? -1 : 1);
                            if (Sign(si) == 0 || Sign(ti) == 0) d = 0;
                            repaired += d != 0;
                            Expect(source, target, 8, 5, d);
                            const bool provided = to != eZFCC_v210 || (from != eZFCC_RGB32 && from != eZFCC_RGB24);
                            EXPECT_EQ(ConvertSameGeometry(source.memory.data(), found.data(), &sp, &tp),
                                      provided ? S_OK : E_FAIL);
                            ASSERT_EQ(found, target.memory)
                                << std::hex << from << " to " << to << std::dec << " " << si << ti << " " << sh << " " << th;
                        }
    EXPECT_EQ(repaired, 25 * 2 * 4);
}

// A record that says nothing has the order of its standard format.
TEST(FieldOrder, OfTheFormatWhereTheRecordSaysNothing) {
    Z_VID_PROPS sp = ModelRecord(eZFCC_UYVY, 720, 486, 0);
    sp.eVideoFormat = eZVF_NTSC;    // field 2 first
    Z_VID_PROPS tp = ModelRecord(eZFCC_UYVY, 720, 486, 0);
    tp.eInterlace = eZI_Field1First;
    const Picture source = ModelPicture(sp, 1, false);
    Picture target = ModelPicture(tp, 2, false);
    Bytes found = target.memory;
    Expect(source, target, 720, 486, -2);
    EXPECT_EQ(ConvertSameGeometry(source.memory.data(), found.data(), &sp, &tp), S_OK);
    EXPECT_EQ(found, target.memory);
}

TEST(FieldOrder, ShortPictures) {
    for (const int32_t rows : {1, 2, 3})
        for (const bool up : {false, true})
            for (const bool bottomUp : {false, true}) {
                Z_VID_PROPS sp = ModelRecord(eZFCC_RGB32, 3, -rows, 0);
                Z_VID_PROPS tp = ModelRecord(eZFCC_RGB32, 3, bottomUp ? rows : -rows, 0);
                sp.eInterlace = up ? eZI_Field1First : eZI_Field2First;
                tp.eInterlace = up ? eZI_Field2First : eZI_Field1First;
                const Picture source = ModelPicture(sp, 1, false);
                Picture target = ModelPicture(tp, 2, false);
                Bytes found = target.memory;
                Expect(source, target, 3, rows, up != bottomUp ? 2 : -2);
                EXPECT_EQ(ConvertSameGeometry(source.memory.data(), found.data(), &sp, &tp), S_OK);
                EXPECT_EQ(found, target.memory) << rows << up << bottomUp;
            }
}

// The height is that of the common part, not that of the higher target.
TEST(FieldOrder, OfTheCommonPart) {
    Z_VID_PROPS sp = ModelRecord(eZFCC_UYVY, 4, 3, 0);
    Z_VID_PROPS tp = ModelRecord(eZFCC_UYVY, 6, 6, 0);
    sp.eInterlace = eZI_Field1First;
    tp.eInterlace = eZI_Field2First;
    const Picture source = ModelPicture(sp, 1, false);
    Picture target = ModelPicture(tp, 2, false);
    Bytes found = target.memory;
    Expect(source, target, 4, 3, 2);
    EXPECT_EQ(ConvertSameGeometry(source.memory.data(), found.data(), &sp, &tp), S_OK);
    EXPECT_EQ(found, target.memory);
}

TEST(FieldOrder, TheRepeatedRowEndsWithTheMemory) {
    for (const int32_t sign : {1, -1}) {
        Z_VID_PROPS sp = ModelRecord(eZFCC_RGB32, 3, -4, 0);
        Z_VID_PROPS tp = ModelRecord(eZFCC_RGB32, 3, sign * 4, 20);
        // The repeated row is the last one in the memory both ways.
        sp.eInterlace = eZI_Field1First;
        tp.eInterlace = eZI_Field2First;
        const Picture source = ModelPicture(sp, 1, true);
        // Exactly as long as its pixels: an address checker sees each byte behind.
        Picture target = ModelPicture(tp, 2, true);
        Bytes found = target.memory;
        Expect(source, target, 3, 4, -2 * sign);
        EXPECT_EQ(ConvertSameGeometry(source.memory.data(), static_cast<int64_t>(source.memory.size()), found.data(),
                                      static_cast<int64_t>(found.size()), &sp, &tp),
                  S_OK);
        EXPECT_EQ(found, target.memory);
    }
}

// The row is repeated also when there is no conversion.
TEST(FieldOrder, RepeatsWithoutARoute) {
    Z_VID_PROPS sp = ModelRecord(eZFCC_RGB32, 4, -2, 0);
    Z_VID_PROPS tp = ModelRecord(eZFCC_v210, 4, 2, 0);
    sp.eInterlace = eZI_Field1First;
    tp.eInterlace = eZI_Field2First;
    const Bytes src(32);
    Bytes dst(256, 1);
    std::fill(dst.begin() + 128, dst.end(), uint8_t{2});
    EXPECT_EQ(ConvertSameGeometry(src.data(), dst.data(), &sp, &tp), E_FAIL);
    EXPECT_EQ(dst, Bytes(256, 1));
}

}    // namespace
}    // namespace zck
