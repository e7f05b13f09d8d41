#include "guards/pe_file.h"

#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace jex::test {
namespace {

// The bytes of the file, read by the addresses that they will have relative to its base.
class Image {
 public:
  explicit Image(const std::string& path) : path_(path) {
    std::ifstream file(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
    const auto& dos = at_offset<IMAGE_DOS_HEADER>(0);
    headers_ = &at_offset<IMAGE_NT_HEADERS32>(dos.e_lfanew);
    if (dos.e_magic != IMAGE_DOS_SIGNATURE || headers_->Signature != IMAGE_NT_SIGNATURE ||
        headers_->FileHeader.Machine != IMAGE_FILE_MACHINE_I386)
      fail("is no 32-bit program file");
    const size_t table = dos.e_lfanew + offsetof(IMAGE_NT_HEADERS32, OptionalHeader) +
                         headers_->FileHeader.SizeOfOptionalHeader;
    for (unsigned i = 0; i < headers_->FileHeader.NumberOfSections; ++i)
      sections_.push_back(
          at_offset<IMAGE_SECTION_HEADER>(table + i * sizeof(IMAGE_SECTION_HEADER)));
  }

  const IMAGE_NT_HEADERS32& headers() const { return *headers_; }
  const std::vector<IMAGE_SECTION_HEADER>& sections() const { return sections_; }
  const IMAGE_DATA_DIRECTORY& directory(int number) const {
    return headers_->OptionalHeader.DataDirectory[number];
  }

  const IMAGE_SECTION_HEADER& section_of(DWORD address) const {
    for (const auto& section : sections_)
      if (address >= section.VirtualAddress &&
          address - section.VirtualAddress <
              std::max(section.Misc.VirtualSize, section.SizeOfRawData))
        return section;
    fail("has an address outside its sections");
  }
  template <class T>
  const T& at(DWORD address) const {
    const auto& section = section_of(address);
    return at_offset<T>(address - section.VirtualAddress + section.PointerToRawData);
  }
  std::string text(DWORD address) const {
    std::string text;
    while (const char c = at<char>(address++)) text += c;
    return text;
  }

 private:
  [[noreturn]] void fail(const char* what) const { throw std::runtime_error(path_ + " " + what); }
  template <class T>
  const T& at_offset(size_t offset) const {
    if (offset + sizeof(T) > bytes_.size()) fail("is too short");
    return *reinterpret_cast<const T*>(bytes_.data() + offset);
  }

  std::string path_;
  std::vector<char> bytes_;
  const IMAGE_NT_HEADERS32* headers_;
  std::vector<IMAGE_SECTION_HEADER> sections_;
};

void read_exports(const Image& image, PeFile& file) {
  const auto& directory = image.directory(IMAGE_DIRECTORY_ENTRY_EXPORT);
  if (!directory.Size) return;
  const auto& table = image.at<IMAGE_EXPORT_DIRECTORY>(directory.VirtualAddress);
  file.name = image.text(table.Name);
  std::vector<std::string> names(table.NumberOfFunctions);
  for (DWORD i = 0; i < table.NumberOfFunctions; ++i)
    names[i] = "#" + std::to_string(table.Base + i);
  for (DWORD i = 0; i < table.NumberOfNames; ++i)
    names.at(image.at<WORD>(table.AddressOfNameOrdinals + 2 * i)) =
        image.text(image.at<DWORD>(table.AddressOfNames + 4 * i));
  for (DWORD i = 0; i < table.NumberOfFunctions; ++i) {
    const DWORD address = image.at<DWORD>(table.AddressOfFunctions + 4 * i);
    if (!address) continue;
    PeExport& entry = file.exports[names[i]];
    // A forwarder's text lies in the export table itself.
    if (address - directory.VirtualAddress < directory.Size)
      entry = {0, image.text(address), false};
    else
      entry = {unsigned(address), "",
               (image.section_of(address).Characteristics & IMAGE_SCN_MEM_EXECUTE) != 0};
  }
}

void read_imports(const Image& image, PeFile& file) {
  const auto& directory = image.directory(IMAGE_DIRECTORY_ENTRY_IMPORT);
  if (!directory.Size) return;
  for (DWORD row = directory.VirtualAddress;; row += sizeof(IMAGE_IMPORT_DESCRIPTOR)) {
    const auto& library = image.at<IMAGE_IMPORT_DESCRIPTOR>(row);
    if (!library.Name) return;
    auto& names = file.imports[image.text(library.Name)];
    for (DWORD slot = library.OriginalFirstThunk;; slot += 4) {
      const DWORD import = image.at<DWORD>(slot);
      if (!import) break;
      names.push_back(import & IMAGE_ORDINAL_FLAG32
                          ? "#" + std::to_string(import & 0xffff)
                          : image.text(import + offsetof(IMAGE_IMPORT_BY_NAME, Name)));
    }
  }
}

}  // namespace

PeFile read_pe(const std::string& path) {
  const Image image(path);
  PeFile file{};
  read_exports(image, file);
  read_imports(image, file);
  for (const auto& section : image.sections()) {
    const auto* name = reinterpret_cast<const char*>(section.Name);
    file.sections.push_back({std::string(name, strnlen(name, sizeof section.Name)),
                             (section.Characteristics & IMAGE_SCN_MEM_WRITE) != 0,
                             (section.Characteristics & IMAGE_SCN_MEM_EXECUTE) != 0});
  }
  const WORD can = image.headers().OptionalHeader.DllCharacteristics;
  file.relocatable = (can & IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE) &&
                     image.directory(IMAGE_DIRECTORY_ENTRY_BASERELOC).Size;
  file.no_execute = can & IMAGE_DLLCHARACTERISTICS_NX_COMPAT;
  file.thread_storage = image.directory(IMAGE_DIRECTORY_ENTRY_TLS).Size;
  return file;
}

}  // namespace jex::test
