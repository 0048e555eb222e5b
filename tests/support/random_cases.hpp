#pragma once

namespace test {

/// How many random cases a test tries: `usual`, or as many per cent of it as TARN_RANDOM_CASES
/// says, but at least one.
unsigned randomCases(unsigned usual);

}  // namespace test
