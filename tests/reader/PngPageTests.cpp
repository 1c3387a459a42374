// PNG files with one fault each, their checksums right.
#include <zlib.h>

#include <array>
#include <cstring>
#include <fstream>

#include "reader/PageFiles.h"
#include "refhost/reader/Bytes.h"

namespace {

// Of the chunk of `length` bytes of data.
void SetChecksum(Bytes& file, size_t chunk, size_t length) {
    const auto sum = crc32(0, &file[chunk + 4], static_cast<uInt>(length + 4));
    reader::Put(&file[chunk + 8 + length], static_cast<uint32_t>(sum), 4, true);
}

TEST(PngPage, DamagedFiles) {
    for (const char* name : {"alpha.png", "palette16.png", "rgb16.png", "no-resolution.png"}) {
        SCOPED_TRACE(name);
        std::ifstream stream(std::string(TEST_DATA_DIR "/") + name, std::ios::binary);
        const Bytes file(std::istreambuf_iterator<char>(stream), {});
        const auto whole = ReadPage(file);
        ASSERT_NE(whole, nullptr);
        for (size_t chunk = 8, length = 0; chunk < file.size(); chunk += length + 12) {
            length = reader::Get32(file, chunk, true);
            for (size_t i = 0; i < (length + 12) * 3; ++i) {
                Bytes changed = file;
                changed[chunk + i / 3] ^= std::array<uint8_t, 3>{0x01, 0x20, 0xFF}[i % 3];
                if (i / 3 >= 4 && i / 3 < length + 8) SetChecksum(changed, chunk, length);
                const auto read = ReadPage(changed);
                EXPECT_TRUE(read == nullptr || (read->Width() == whole->Width() && read->Height() == whole->Height()))
                    << chunk + i / 3 << ", " << i % 3;
            }
            if (std::memcmp(&file[chunk + 4], "IDAT", 4) != 0) continue;
            Bytes cut = file;
            for (size_t left = length; left-- > 0;) {
                cut.erase(cut.begin() + static_cast<ptrdiff_t>(chunk + 8 + left));
                reader::Put(&cut[chunk], static_cast<uint32_t>(left), 4, true);
                SetChecksum(cut, chunk, left);
                EXPECT_EQ(ReadPage(cut), nullptr) << left << " of " << length;
            }
        }
    }
}

}  // namespace
