#pragma once

#include <version>

// What every header here needs, told in a sentence instead of in pages of errors. Included by all.

#if __cplusplus < 202002L
#error "The evolution path finder needs C++20: compile with -std=c++20 or a later standard."
#endif

#ifndef __GLIBCXX__
#error "The evolution path finder needs libstdc++: clang++ takes it with -stdlib=libstdc++."
#elif !_GLIBCXX_USE_CXX11_ABI
#error "The evolution path finder needs the new ABI of libstdc++: no _GLIBCXX_USE_CXX11_ABI=0."
#endif

#ifndef __cpp_exceptions
#error "The evolution path finder reports errors by exceptions: compile without -fno-exceptions."
#endif

#ifndef __cpp_rtti
#error "The evolution path finder needs run-time type information: compile without -fno-rtti."
#endif
