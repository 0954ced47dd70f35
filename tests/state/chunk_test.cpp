// MIT License. Tests of chunks: bytes written, bytes read, bytes refused.
#include "state/chunk.h"

#include <gmock/gmock.h>

namespace {

using chunks::chunk;
using chunks::chunk_id;
using chunks::mutable_chunk;
using chunks::string_chunk;

memory::data_reference block_of(const std::string& bytes) {
  auto* const block = new memory::byte_block;
  memory::data_reference reference(block);
  block->append(bytes.data(), bytes.size());
  return reference;
}

// Bytes in hexadecimal digits, without blanks between them.
std::string from_hex(const std::string& digits) {
  std::string bytes;
  for (size_t at = 0; at < digits.size(); at += 2) {
    bytes += static_cast<char>(std::stoi(digits.substr(at, 2), nullptr, 16));
  }
  return bytes;
}

template <typename Action>
std::string error_of(Action action) {
  try {
    action();
  } catch (const err::exception& error) {
    return error.what();
  }
  return "none";
}

constexpr char no_chunk[] = "basic_chunk_input_stream: chunk not valid or no chunk at all!";

TEST(Chunk, ReadsWhatWasWrittenAndKeepsItsBlockAlive) {
  mutable_chunk outer(chunk_id("KVLP"));
  outer.append(string_chunk(0, ""));  // an empty text still has a body
  outer.append(string_chunk(1, "grüße"));
  outer.write(uint32_t{1010});
  chunks::chunk_input_stream stream{chunk(outer.final_form())};
  chunk read;
  stream.next(&read);
  EXPECT_EQ(string_chunk(read).text(), "");
  stream.next(&read);
  EXPECT_EQ(string_chunk(read).text(), "grüße");
  EXPECT_EQ(stream.cursor().read_number(), 1010U);
  EXPECT_EQ(error_of([&] { stream.next(&read); }), no_chunk);
  const uint64_t size = outer.size();
  outer.write(uint8_t{1});  // taking the final form has frozen nothing
  EXPECT_EQ(outer.final_form()->size(), 8 + size + 1);
  outer = mutable_chunk(0);
  stream = chunks::chunk_input_stream(chunk());
  EXPECT_EQ(string_chunk(read).text(), "grüße");
}

TEST(Chunk, IsRefusedWhenItIsLongerThanItsBlock) {
  const std::string text = "chunk::chunk(data_ref) chunk corrupt! chunk size bigger than avail data!";
  for (const char* const size : {"00000003", "7fffffff", "ffffffff", "fffffff8"}) {
    EXPECT_EQ(error_of([&] { chunk{block_of("strn" + from_hex(size) + "ab")}; }), text) << size;
  }
  for (const size_t length : {0U, 4U, 7U}) {
    EXPECT_EQ(error_of([&] { chunk{block_of(std::string("strn\0\0\0", length))}; }), text) << length;
  }
}

TEST(Chunk, StreamRefusesHeadersAndBodiesThatDontFit) {
  chunk read;
  // Up to a whole header with a body that does not fit.
  for (const char* const body : {"", "00", "7374726e000000", "7374726e00000001", "7374726effffffff"}) {
    chunks::chunk_input_stream stream{chunk(1, block_of(from_hex(body)))};
    EXPECT_EQ(error_of([&] { stream.next(&read); }), no_chunk) << body;
  }
  EXPECT_EQ(error_of([&] { chunks::chunk_input_stream(chunk()).next(&read); }), no_chunk);

  chunks::chunk_input_stream empty_body{chunk(1, block_of(from_hex("7374726e00000000")))};
  empty_body.next(&read);
  EXPECT_EQ(read.size(), 0U);
  EXPECT_EQ(error_of([&] { empty_body.next(&read); }), no_chunk);
}

TEST(Chunk, RefusesEmptyChunksAndForeignTexts) {
  mutable_chunk outer(chunk_id("CcnK"));
  const std::string text = "cannot append chunks to mutable_chunk after we created a final chunk!";
  EXPECT_EQ(error_of([&] { outer.append(chunk()); }), text);
  EXPECT_EQ(error_of([&] { outer.append(mutable_chunk(chunk_id("strn"))); }), text);
  EXPECT_EQ(error_of([&] { string_chunk{chunk(chunk_id("strm"), block_of("........"))}; }),
            "basic_string_chunk initialized with wrong chunk data!");
}

TEST(Chunk, ReadsATextPastItsBodyAsTheBlocksNextBytesThenZeros) {
  const std::string header = "strn" + from_hex("0000000a") + from_hex("00000000");
  const auto text_of_length = [&](const char* length) {
    return string_chunk(chunk(block_of(header + from_hex(length) + "abcdef"))).text();
  };
  EXPECT_EQ(text_of_length("00000002"), "ab");
  EXPECT_EQ(text_of_length("00000006"), "abcdef");
  EXPECT_EQ(text_of_length("00000008"), std::string("abcdef\0\0", 8));
  EXPECT_THROW(text_of_length("ffffffff"), std::bad_alloc);
  EXPECT_EQ(string_chunk(chunk(chunk_id("strn"), {})).text(), "");
}

}  // namespace
