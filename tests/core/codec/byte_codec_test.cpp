#include "core/codec/byte_codec.h"

#include <gtest/gtest.h>

namespace tarvex {
namespace {

struct Tie {
  std::uint16_t number = 0;
  double length = 0.0;
  FixedText<4> name = {};
};

template <typename Walker, typename Record>
constexpr void WalkTie(Walker& walker, Record& tie) {
  walker.Number(tie.number);
  walker.Number(tie.length);
  walker.Text(tie.name);
  walker.Zeros(1);
}

static_assert(ByteCount([](auto& walker) {
                const Tie tie;
                WalkTie(walker, tie);
              }) == 16);

constexpr std::string_view kBigEndian("\x01\x02\x40\x04\0\0\0\0\0\0AB\0\0\0\0", 16);
constexpr std::string_view kLittleEndian(
    "\x02\x01\0\0\0\0\0\0\x04\x40"
    "AB\0\0\0\0",
    16);

TEST(ByteCodec, OneWalkWritesAndReadsEitherByteOrder) {
  const Tie tie{.number = 0x0102, .length = 2.5, .name = FixedText<4>("AB")};
  for (const ByteOrder order : {ByteOrder::Little, ByteOrder::Big}) {
    std::string bytes;
    ByteWriter writer(bytes, order);
    WalkTie(writer, tie);
    EXPECT_EQ(bytes, order == ByteOrder::Big ? kBigEndian : kLittleEndian);
    Tie read;
    ByteReader reader(bytes, order);
    WalkTie(reader, read);
    EXPECT_TRUE(reader.ok());
    EXPECT_TRUE(reader.rest().empty());
    EXPECT_EQ(read.number, tie.number);
    EXPECT_EQ(read.length, tie.length);
    EXPECT_EQ(read.name, tie.name);
  }
}

TEST(ByteCodec, BytesThatEndTooEarlyAreTold) {
  for (std::size_t length = 0; length < kLittleEndian.size(); ++length) {
    Tie read;
    ByteReader reader(kLittleEndian.substr(0, length));
    WalkTie(reader, read);
    EXPECT_FALSE(reader.ok()) << length;
  }
  ByteReader reader(kLittleEndian);
  EXPECT_TRUE(reader.Bytes(~std::uint64_t{0}).empty());
  EXPECT_FALSE(reader.ok());
  EXPECT_TRUE(reader.Bytes(1).empty());  // nothing is taken any more
}

}  // namespace
}  // namespace tarvex
