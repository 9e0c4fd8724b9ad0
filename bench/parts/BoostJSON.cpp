// The library that our reader is measured against is compiled here, once.
#include <boost/json/src.hpp>
