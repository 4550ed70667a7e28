#include "tests/allocation/own_code.h"

#include <dlfcn.h>
#include <elf.h>
#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "NetworkgRPC.h"

namespace allocation {
namespace {

// The functions of an ELF file on disk, by their addresses in it.
class Functions {
 public:
  explicit Functions(const char* path) {
    // At once: with debugging information there are many megabytes of it.
    image.resize(static_cast<std::size_t>(std::filesystem::file_size(path)));
    std::ifstream(path, std::ios::binary)
        .read(image.data(), static_cast<std::streamsize>(image.size()));
    const auto& header = At<ElfW(Ehdr)>(0);
    for (int i = 0; i < header.e_shnum; ++i) {
      const auto& section = SectionAt(i);
      if (section.sh_type == SHT_SYMTAB)
        Collect(section, SectionAt(static_cast<int>(section.sh_link)));
    }
    if (functions.empty()) throw std::runtime_error(std::string(path) + " has no symbol table");
    std::sort(functions.begin(), functions.end(),
              [](const Function& a, const Function& b) { return a.begin < b.begin; });
  }

  /// The mangled name; empty when no function is there.
  std::string_view NameAt(std::size_t address) const {
    const auto after = std::upper_bound(
        functions.begin(), functions.end(), address,
        [](std::size_t sought, const Function& function) { return sought < function.begin; });
    if (after == functions.begin()) return {};
    const Function& function = *(after - 1);
    return address < function.end ? function.name : std::string_view();
  }

 private:
  struct Function {
    std::size_t begin;
    std::size_t end;
    std::string_view name;
  };

  template <class Record>
  const Record& At(std::size_t offset) const {
    if (offset + sizeof(Record) > image.size()) throw std::runtime_error("not an ELF file");
    return *reinterpret_cast<const Record*>(image.data() + offset);
  }

  const ElfW(Shdr) & SectionAt(int index) const {
    const auto& header = At<ElfW(Ehdr)>(0);
    return At<ElfW(Shdr)>(header.e_shoff + static_cast<std::size_t>(index) * header.e_shentsize);
  }

  void Collect(const ElfW(Shdr) & symbols, const ElfW(Shdr) & names) {
    for (std::size_t at = 0; at < symbols.sh_size; at += symbols.sh_entsize) {
      const auto& symbol = At<ElfW(Sym)>(symbols.sh_offset + at);
      if ((symbol.st_info & 0xF) != STT_FUNC || symbol.st_shndx == SHN_UNDEF) continue;
      functions.push_back({symbol.st_value, symbol.st_value + symbol.st_size,
                           image.data() + names.sh_offset + symbol.st_name});
    }
  }

  std::string image;
  std::vector<Function> functions;
};

struct Module {
  const void* base;
  std::string_view path;
};

Module ModuleOf(const void* address) {
  Dl_info info{};
  if (dladdr(address, &info) == 0) return {nullptr, {}};
  return {info.dli_fbase, info.dli_fname};
}

bool Contains(std::string_view text, std::string_view part) {
  return text.find(part) != std::string_view::npos;
}

enum class Owner { kRuntime, kLibrary, kOther };

// By the outermost scope in the mangled name: _ZN4grpc..., _ZNSt6vector...
Owner OwnerOf(std::string_view mangled) {
  const std::size_t scope = mangled.find_first_not_of("_ZNKVLTIG");
  if (mangled.substr(0, 2) != "_Z" || scope == std::string_view::npos) return Owner::kLibrary;
  const std::string_view name = mangled.substr(scope);
  const auto begins = [name](std::string_view with) { return name.substr(0, with.size()) == with; };
  if (begins("S") || begins("9__gnu_cxx")) return Owner::kRuntime;
  for (const char* other : {"4grpc", "6google", "8ostrevan", "4absl"})
    if (begins(other)) return Owner::kOther;
  return Owner::kLibrary;
}

Owner OwnerOf(const void* address) {
  static const Module library = ModuleOf(reinterpret_cast<void*>(&NetworkgRPC::FactoryReset));
  static const Functions functions(std::string(library.path).c_str());
  const Module module = ModuleOf(address);
  if (module.base == library.base) {
    const auto offset = static_cast<std::size_t>(static_cast<const char*>(address) -
                                                 static_cast<const char*>(library.base));
    // A return address may lie just behind the function that never returns.
    return OwnerOf(functions.NameAt(offset - 1));
  }
  // The first frames are the program's operator new, what it asks, and perhaps a
  // sanitizer; further up the program stands only above what it allocates itself.
  static const void* const program = ModuleOf(reinterpret_cast<void*>(&CalledByOwnCode)).base;
  const bool runtime = module.base == program || Contains(module.path, "libstdc++") ||
                       Contains(module.path, "libgcc") || Contains(module.path, "san.so");
  return runtime ? Owner::kRuntime : Owner::kOther;
}

}  // namespace

bool CalledByOwnCode() {
  std::array<void*, 64> frames{};
  const auto count = static_cast<std::size_t>(backtrace(frames.data(), frames.size()));
  for (std::size_t i = 0; i < count; ++i)
    if (const Owner owner = OwnerOf(frames[i]); owner != Owner::kRuntime)
      return owner == Owner::kLibrary;
  return false;
}

}  // namespace allocation
