// Memory that the library frees when a host unloads it.

namespace __gnu_cxx {
/// Of the C++ runtime: frees its reserve for exceptions thrown when memory has run out.
void __freeres();
} // namespace __gnu_cxx

namespace {

/// The runtime is part of the library and would leak its reserve each time a host loads it. Runs after all other
/// destructors of the library.
[[gnu::destructor(101)]] void FreeRuntimeMemory() {
    __gnu_cxx::__freeres();
}

} // namespace
