// MIT License. kesrel-make-default-bank: writes the default bank from its table.
#include <cstdio>
#include <exception>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

#include "tools/default_bank.h"

static void make(const std::string& table_path, const std::string& bank_path) {
  std::ifstream table(table_path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(table), {}};
  if (!table || text.empty()) throw std::runtime_error("cannot read " + table_path);
  const std::string bank = default_bank_file(programs_of_table(text));
  std::ofstream out(bank_path, std::ios::binary);
  out << bank;
  if (!out.flush()) throw std::runtime_error("cannot write " + bank_path);
}

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: kesrel-make-default-bank TABLE.csv BANK.vstpreset\n", stderr);
    return 2;
  }
  try {
    make(argv[1], argv[2]);
    return 0;
  } catch (const std::exception& fault) {
    std::fprintf(stderr, "kesrel-make-default-bank: %s\n", fault.what());
    return 2;
  }
}
