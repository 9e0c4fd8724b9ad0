// SQLite can load extensions through the dynamic loader. A fully static program has no loader, so
// these functions replace the loader's, and always fail.

// The linker's option --wrap redirects calls of each loader function to the one named here.
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
