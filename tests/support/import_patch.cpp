#include "support/import_patch.hpp"

#include <cstdint>
#include <cstring>

#ifdef _WIN32
#include <windows.h>
#else
#include <link.h>
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace kirvo_test {

namespace {

#ifdef _WIN32

// The place in the import table of a module that holds the address of the function.
void** find_slot(const char* module, const char* function) {
    auto* base = reinterpret_cast<uint8_t*>(GetModuleHandleA(module));
    if (base == nullptr)
        return nullptr;
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const auto& imports = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    auto* library = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + imports.VirtualAddress);
    for (; library->Name != 0; ++library) {
        auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->OriginalFirstThunk);
        auto* slot = reinterpret_cast<IMAGE_THUNK_DATA*>(base + library->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++slot) {
            const auto* entry =
                reinterpret_cast<const IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal) &&
                std::strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0)
                return reinterpret_cast<void**>(&slot->u1.Function);
        }
    }
    return nullptr;
}

void store(void** slot, void* address) {
    DWORD before;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = address;
    VirtualProtect(slot, sizeof *slot, before, &before);
}

#else

struct Search {
    const char* module;
    const char* function;
    void** slot;
};

#if __ELF_NATIVE_CLASS == 64
constexpr auto symbol_of = [](ElfW(Xword) info) { return ELF64_R_SYM(info); };
#else
constexpr auto symbol_of = [](ElfW(Word) info) { return ELF32_R_SYM(info); };
#endif

// The place in the offset table of a module that holds the address of the function.
int visit(dl_phdr_info* info, size_t, void* data) {
    Search& search = *static_cast<Search*>(data);
    if (search.module == nullptr ? *info->dlpi_name != 0
                                 : std::strstr(info->dlpi_name, search.module) == nullptr)
        return 0;
    const ElfW(Dyn)* dynamic = nullptr;
    for (int i = 0; i < info->dlpi_phnum; ++i) {
        if (info->dlpi_phdr[i].p_type == PT_DYNAMIC)
            dynamic =
                reinterpret_cast<const ElfW(Dyn)*>(info->dlpi_addr + info->dlpi_phdr[i].p_vaddr);
    }
    const ElfW(Sym)* symbols = nullptr;
    const char* names = nullptr;
    struct {
        ElfW(Addr) at, bytes;
    } tables[2] = {};
    for (; dynamic != nullptr && dynamic->d_tag != DT_NULL; ++dynamic) {
        const ElfW(Addr) value = dynamic->d_un.d_ptr;
        switch (dynamic->d_tag) {
        case DT_SYMTAB:
            symbols = reinterpret_cast<const ElfW(Sym)*>(value);
            break;
        case DT_STRTAB:
            names = reinterpret_cast<const char*>(value);
            break;
        case DT_RELA:
            tables[0].at = value;
            break;
        case DT_RELASZ:
            tables[0].bytes = value;
            break;
        case DT_JMPREL:
            tables[1].at = value;
            break;
        case DT_PLTRELSZ:
            tables[1].bytes = value;
            break;
        }
    }
    for (const auto& table : tables) {
        const auto* entry = reinterpret_cast<const ElfW(Rela)*>(table.at);
        for (size_t i = 0; i < table.bytes / sizeof *entry; ++i) {
            const auto symbol = symbol_of(entry[i].r_info);
            if (symbol != 0 && std::strcmp(names + symbols[symbol].st_name, search.function) == 0) {
                search.slot = reinterpret_cast<void**>(info->dlpi_addr + entry[i].r_offset);
                return 1;
            }
        }
    }
    return 1;
}

void** find_slot(const char* module, const char* function) {
    Search search{module, function, nullptr};
    dl_iterate_phdr(visit, &search);
    return search.slot;
}

void store(void** slot, void* address) {
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    mprotect(reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(slot) & ~(page - 1)), page,
             PROT_READ | PROT_WRITE);
    *slot = address;
}

#endif

} // namespace

ImportPatch::ImportPatch(const char* module, const char* function, void* replacement)
    : slot_(find_slot(module, function)) {
    if (slot_ == nullptr)
        return;
    original_ = *slot_;
    store(slot_, replacement);
}

ImportPatch::~ImportPatch() {
    if (slot_ != nullptr)
        store(slot_, original_);
}

} // namespace kirvo_test
