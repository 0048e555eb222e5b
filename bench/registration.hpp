#pragma once

/// The groups of benchmarks, by the first part of their names.
namespace bench {

/// `Path/CATALOGUE`: the question beside its floor.
void registerPathBenchmarks();

/// `Exhaustive/CATALOGUE`: the exhaustive engine alone beside the library, where it can finish.
void registerExhaustiveBenchmarks();

/// `ProductGraph/CATALOGUE`: the product graph beside the library, where it fits.
void registerProductGraphBenchmarks();

/// `Cached/CATALOGUE`: a question asked again; `CachedOnThreads/CATALOGUE`: by several threads.
void registerCacheBenchmarks();

/// `Link/`, `CombineSelection/` and `CombineAlternatives/DEPENDENCIESxVERSIONS`: a metamodel with
/// about a thousand linked variants.
void registerLinkingBenchmarks();

/// `Trace/`: a trace point that is off.
void registerTraceBenchmarks();

/// `Version/`: reading and comparing versions.
void registerVersionBenchmarks();

}  // namespace bench
