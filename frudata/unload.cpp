// What is given back when a host unloads the library.

namespace __gnu_cxx {
/// Of the C++ runtime: frees the memory that it keeps for exceptions thrown without memory.
void __freeres();
} // namespace __gnu_cxx

namespace {

/// The runtime lies inside the library, and would keep this memory for each time that a host loads it. Runs after all
/// else in the library.
[[gnu::destructor(101)]] void FreeRuntimeMemory() {
    __gnu_cxx::__freeres();
}

} // namespace
