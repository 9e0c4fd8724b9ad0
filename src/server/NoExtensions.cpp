// SQLite can load extensions, for which it asks the dynamic loader. A fully static program has
// none: there these stand in for the loader's functions and refuse.

// Each is found by the linker only, under the name it makes of the function it replaces.
extern "C" {

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
void* __wrap_dlopen(const char*, int);
void* __wrap_dlsym(void*, const char*);
int __wrap_dlclose(void*);
char* __wrap_dlerror();

void* __wrap_dlopen(const char*, int) { return nullptr; }
void* __wrap_dlsym(void*, const char*) { return nullptr; }
int __wrap_dlclose(void*) { return 0; }
char* __wrap_dlerror() { return nullptr; }
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

}  // extern "C"
