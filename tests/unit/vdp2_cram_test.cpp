// CVdp2's colour RAM: writes by colour RAM mode, reads, the double buffer and its per-frame change stamps, sprite
// colour lookup and colour conversion.
#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "vdp_test.h"

namespace vdpgl {
namespace {

using namespace vdp2reg;

class Vdp2CramTest : public test::VdpTest {
protected:
    // The colour RAM mode comes from RAMCTL bits 13-12; the other bits are set to show that they do not matter.
    void SetCramMode(uint16_t mode) { vdp2->WriteRegisterWord(RAMCTL, static_cast<uint16_t>((mode << 12) | 0x0301)); }
    std::vector<uint16_t> ActiveBuffer() const { return {vdp2->cram, vdp2->cram + CVdp2::kCramEntries}; }
    static long CountNonZero(const uint32_t* stamps, int n) {
        return std::count_if(stamps, stamps + n, [](uint32_t s) { return s != 0; });
    }
};

TEST_F(Vdp2CramTest, ModeZeroMirrorsEveryWriteInTheSecondHalf) {
    SetCramMode(0);
    vdp2->WriteCramWord(0x010, 0x1234);
    EXPECT_EQ(vdp2->ReadCramWord(0x010), 0x1234);
    EXPECT_EQ(vdp2->ReadCramWord(0x810), 0x1234);
    vdp2->WriteCramWord(0x822, 0x5678);  // an address in the second half reaches the first too
    vdp2->WriteCramByte(0x011, 0xAB);
    vdp2->WriteCramByte(0x810, 0xCD);
    vdp2->WriteCramLong(0x1040, 0x11112222);  // address masked with 0xFFF
    const uint16_t* c = vdp2->cram;
    EXPECT_EQ((std::array{c[0x011], c[0x411], c[0x008], c[0x408], c[0x020], c[0x021], c[0x420], c[0x421]}),
              (std::array<uint16_t, 8>{0x5678, 0x5678, 0xCDAB, 0xCDAB, 0x1111, 0x2222, 0x1111, 0x2222}));
    EXPECT_TRUE(std::equal(vdp2->cram, vdp2->cram + 1024, vdp2->cram + 1024));
    // Reads take the masked address in any mode: byte (even: high), word, long (high half first).
    EXPECT_EQ(vdp2->ReadCramByte(0xF011), 0xAB);
    EXPECT_EQ(vdp2->ReadCramWord(0x1840), 0x1111);
    EXPECT_EQ(vdp2->ReadCramLong(0x040), 0x11112222u);
}

TEST_F(Vdp2CramTest, ModesOneAndTwoWriteOneEntryWithoutMirrorAndModeThreeNone) {
    for (uint16_t mode : {1, 2}) {
        SCOPED_TRACE(mode);
        vdp2->ResetVdp2();
        SetCramMode(mode);
        vdp2->WriteCramWord(0x010, 0x1234);
        vdp2->WriteCramWord(0x812, 0x5678);
        vdp2->WriteCramByte(0x813, 0x9A);
        vdp2->WriteCramLong(0xC00, 0xAAAABBBB);
        std::vector<uint16_t> expected(CVdp2::kCramEntries, 0);
        expected[0x008] = 0x1234;
        expected[0x409] = 0x569A;
        expected[0x600] = 0xAAAA;
        expected[0x601] = 0xBBBB;
        EXPECT_EQ(ActiveBuffer(), expected);
    }
    SetCramMode(3);
    const std::vector<uint16_t> before = ActiveBuffer();
    vdp2->WriteCramByte(0x010, 0xFF);
    vdp2->WriteCramWord(0x810, 0xFFFF);
    vdp2->WriteCramLong(0x100, 0xFFFFFFFF);
    EXPECT_EQ(ActiveBuffer(), before);
    // A reset clears RAMCTL and keeps the mode: writes go on following it, as lookups do.
    SetCramMode(2);
    vdp2->ResetVdp2();
    ASSERT_EQ(vdp2->Register(RAMCTL), 0);
    vdp2->WriteCramWord(0x010, 0x1234);
    EXPECT_EQ(vdp2->ReadCramWord(0x810), 0);
}

TEST_F(Vdp2CramTest, LongAccessAtTheLastWordStaysInTheActiveBuffer) {
    // Make buffer B's first word differ from A's while A is active: B follows A in memory.
    SetCramMode(1);
    vdp2->WriteCramWord(0, 0x1234);
    vdp2->OnVblankOut();
    vdp2->OnVblankOut();
    vdp2->WriteCramWord(0, 0);
    ASSERT_EQ(vdp2->cram, vdp2->CramBuffer(0));
    ASSERT_EQ(vdp2->CramBuffer(1)[0], 0x1234);

    for (uint16_t mode : {1, 0}) {
        SetCramMode(mode);
        vdp2->WriteCramLong(0xFFE, 0xAAAABBBB + mode);
        EXPECT_EQ(vdp2->ReadCramLong(0xFFE), 0xAAAABBBBu + mode);
        EXPECT_EQ(vdp2->CramBuffer(1)[0], 0x1234);
    }
    EXPECT_TRUE(std::equal(vdp2->cram, vdp2->cram + 1024, vdp2->cram + 1024));
}

TEST_F(Vdp2CramTest, SwitchStampsTheBlocksOfWhatChangedInTheFrameAndLeavesBothBuffersAlike) {
    SetCramMode(1);
    vdp2->WriteCramWord(0x123 * 2, 0x7FFF);
    vdp2->WriteCramWord(0x00A, 0x7FFF);  // changed and undone within the frame: no stamp
    vdp2->WriteCramWord(0x00A, 0x0000);
    vdp2->OnVblankOut();  // frame 1
    EXPECT_EQ((std::array{vdp2->palette16Stamps[0x12], vdp2->palette64Stamps[4], vdp2->palette128Stamps[2],
                          vdp2->palette256Stamps[1], vdp2->paletteAllStamp}),
              (std::array<uint32_t, 5>{1, 1, 1, 1, 1}));
    EXPECT_EQ(CountNonZero(vdp2->palette16Stamps, 128) + CountNonZero(vdp2->palette64Stamps, 32) +
                  CountNonZero(vdp2->palette128Stamps, 16) + CountNonZero(vdp2->palette256Stamps, 8),
              4);
    EXPECT_EQ(vdp2->cram, vdp2->CramBuffer(1));
    EXPECT_TRUE(std::equal(vdp2->CramBuffer(0), vdp2->CramBuffer(0) + CVdp2::kCramEntries, vdp2->CramBuffer(1)));

    vdp2->OnVblankOut();  // frame 2: nothing written, nothing restamped
    EXPECT_EQ(vdp2->paletteAllStamp, 1u);
    EXPECT_EQ(vdp2->cram, vdp2->CramBuffer(0));

    vdp2->WriteCramWord(0x7FF * 2, 0x0001);
    vdp2->WriteCramWord(0x123 * 2, 0x0000);  // undoing an earlier frame's change is a change
    EXPECT_EQ(vdp2->CramBuffer(1)[0x123], 0x7FFF) << "writes go to the active buffer only";
    vdp2->OnVblankOut();  // frame 3
    EXPECT_EQ((std::array{vdp2->palette16Stamps[127], vdp2->palette256Stamps[7], vdp2->palette16Stamps[0x12]}),
              (std::array<uint32_t, 3>{3, 3, 3}));
    EXPECT_EQ(vdp2->CramBuffer(1)[0x123], 0);

    SetCramMode(0);
    vdp2->WriteCramWord(0x020, 0x0001);  // a mode-0 change stamps its mirror's blocks too
    vdp2->OnVblankOut();
    EXPECT_EQ(vdp2->palette16Stamps[0x01], 4u);
    EXPECT_EQ(vdp2->palette16Stamps[0x41], 4u);
}

TEST_F(Vdp2CramTest, PaletteStampByKind) {
    SetCramMode(1);
    vdp2->WriteCramWord(0x005 * 2, 1);  // 16-colour block 0
    vdp2->OnVblankOut();
    vdp2->WriteCramWord(0x1F0 * 2, 1);  // 16-colour block 31, 256-colour block 1
    vdp2->OnVblankOut();
    const struct { uint32_t block, kind, stamp; } cases[] = {
        {0, 0, 1}, {31, 0, 2}, {17, 0, 0}, {0, 1, 1},  {15, 1, 1},
        {16, 1, 2}, {31, 1, 2}, {127, 1, 0}, {5, 2, 2}, {0, 3, 0}, {31, 7, 0}};
    for (const auto& c : cases)
        EXPECT_EQ(vdp2->GetPaletteStamp(c.block, c.kind), c.stamp) << "block " << c.block << " kind " << c.kind;
}

TEST_F(Vdp2CramTest, SpriteColorByCramModeAndSpriteColourOffset) {
    SetCramMode(1);
    const struct { uint32_t index; uint16_t value; } words[] = {
        {5, 0x001F},     {261, 0x7C00},   {0x510, 0x03E0}, {0x0FF, 0x8421},
        {6, 0x80BB},     {7, 0x6655},     {518, 0x0012},   {519, 0x3456}};
    for (const auto& w : words) vdp2->WriteCramWord(w.index * 2, w.value);
    vdp2->WriteRegisterWord(CRAOFA, 0x7777);  // the other offset register plays no part

    const struct { uint16_t mode, craofb; uint32_t index, color; } cases[] = {
        {0, 0x0000, 5, 0xFF0000F8},     {0, 0x0010, 5, 0xFFF80000},   // SPCAOS 1: word 261
        {0, 0x0087, 5, 0xFF0000F8},     {1, 0x0050, 0x10, 0xFF00F800},
        {1, 0x0010, 0x7FF, 0xFF080808},                               // wraps to word 0xFF; bit 15 ignored
        {2, 0x0000, 3, 0xFFBB6655},     {2, 0x0010, 3, 0xFF123456},   // words 518-519
        {2, 0x0000, 0x403, 0xFFBB6655}, {3, 0x0010, 5, 0xFFF80000}};  // mode 3 looks up like 0 and 1
    for (const auto& c : cases) {
        vdp2->WriteRegisterWord(RAMCTL, 0);
        SetCramMode(c.mode);
        vdp2->WriteRegisterWord(CRAOFB, c.craofb);
        EXPECT_EQ(vdp2->GetSpriteColor(c.index), c.color)
            << "mode " << c.mode << " CRAOFB " << std::hex << c.craofb << " index " << c.index;
    }
}

}  // namespace
}  // namespace vdpgl
