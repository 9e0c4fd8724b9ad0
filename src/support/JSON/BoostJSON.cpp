// The one place where Boost.JSON is compiled: its headers carry the whole library, and building it
// here, in sections that the linker can drop, keeps what we do not use out of the program.
#include <boost/json/src.hpp>
