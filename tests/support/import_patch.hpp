// Puts a function of the tests in the place of one that a loaded module imports: every call
// that the module makes by that name goes there.
#pragma once

namespace kirvo_test {

class ImportPatch {
  public:
    // The module by a part of its file name; null for the program itself. Does nothing when the
    // module imports no such function.
    ImportPatch(const char* module, const char* function, void* replacement);
    ~ImportPatch();
    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    bool in_place() const { return slot_ != nullptr; }

  private:
    void** slot_ = nullptr;
    void* original_ = nullptr;
};

} // namespace kirvo_test
