#ifndef TARN_EVOLUTION_CATALOGUE_H
#define TARN_EVOLUTION_CATALOGUE_H

/*
 * The evolution path finder and its catalogues, for C.
 *
 * Texts are UTF-8 and end with a NUL. Versions are texts: one that reads as MAJOR.MINOR or
 * MAJOR.MINOR.PATCH is a semantic version, any other a text version.
 *
 * Errors. What can fail returns a status and takes, as its last argument, where to put a message: a
 * sentence that names what was given and what is wrong with it. It is the caller's, to be released
 * with `tarn_evolution_free`; NULL where there is none, as when all is well or memory is short. Who
 * does not want it passes NULL. Other results are written where all went well and are NULL or zero
 * otherwise. No C++ exception leaves a function of this header.
 *
 * Threads. Any number of threads may ask one catalogue, and read one answer, at the same time. Rows
 * are for one thread at a time. Nothing may be in use when it is freed. Callbacks are called on the
 * thread that asks, without any lock held.
 *
 * Structures that begin with `size` may grow: it tells which one the caller was compiled with.
 */

#include <stddef.h>
#include <stdint.h>

#include "tarn_evolution_catalogue_version.h"

#if defined(__GNUC__)
#define TARN_EVOLUTION_API __attribute__((visibility("default")))
#else
#define TARN_EVOLUTION_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Errors, texts, version ---- */

typedef int32_t tarn_evolution_status;

enum {
  TARN_EVOLUTION_OK = 0,
  TARN_EVOLUTION_NO_PATH = 1,           /* no error: the question is answered with no */
  TARN_EVOLUTION_INVALID_ARGUMENT = -1, /* the caller's argument is none that can be */
  TARN_EVOLUTION_BAD_CATALOGUE = -2,    /* cannot be read, or is unsound */
  TARN_EVOLUTION_UNKNOWN_VERSION = -3,  /* a selection names what is not there */
  TARN_EVOLUTION_CANNOT_BE_LINKED = -4, /* the answer depends on what cannot be linked */
  TARN_EVOLUTION_STOPPED = -5,          /* by a stop, or by a callback of the limits */
  TARN_EVOLUTION_TIMED_OUT = -6,
  TARN_EVOLUTION_MEMORY_USED_UP = -7,        /* the memory that the limits allow */
  TARN_EVOLUTION_TOO_MANY_COMBINATIONS = -8, /* of hops; or of versions, for memory */
  TARN_EVOLUTION_CALLBACK_FAILED = -9,       /* of a catalogue; or it could not add a row */
  TARN_EVOLUTION_OUT_OF_MEMORY = -10,        /* of the machine */
  TARN_EVOLUTION_OTHER_ERROR = -11           /* such as callbacks that contradict themselves */
};

/* A name for a status, such as "no path"; "unknown status" for a number that is none. Never freed.
 */
TARN_EVOLUTION_API const char* tarn_evolution_status_name(tarn_evolution_status status);

/* Releases a message or text that a function of this header has given away; NULL is fine. */
TARN_EVOLUTION_API void tarn_evolution_free(char* text);

/* The version of the library that is loaded, as TARN_EVOLUTION_VERSION is that of the headers. */
TARN_EVOLUTION_API uint32_t tarn_evolution_version(void);

/* ---- What a catalogue consists of ---- */

/* One version of one metamodel. A selection is a list of these with one for each name. */
typedef struct tarn_evolution_named_version {
  const char* name;
  const char* version;
} tarn_evolution_named_version;

/* The versions from `lower` up to but without `upper`, each a semantic version or one with a
 * pre-release such as "2.0.0-rc.1"; callbacks are given both. Where `upper` is NULL, the one
 * version `lower`, whatever it is. */
typedef struct tarn_evolution_range {
  const char* lower;
  const char* upper;
} tarn_evolution_range;

/* Some version of `name` that lies in any of the ranges, of which there is at least one. */
typedef struct tarn_evolution_dependency {
  const char* name;
  const tarn_evolution_range* ranges;
  size_t range_count;
} tarn_evolution_dependency;

typedef struct tarn_evolution_hop {
  const char* name;
  const char* from;
  const char* to;
  int32_t expensive; /* zero: no */
} tarn_evolution_hop;

/* What version `version` of `name` needs without being linked to it: no step leads to where the one
 * is held without the other, or, if it is optional, beside another version of that. For metamodels
 * that need each other, and for what is needed only if it is there. Several on one name have to be
 * met together. */
typedef struct tarn_evolution_requirement {
  const char* name;
  const char* version;
  tarn_evolution_dependency needed;
  int32_t optional; /* zero: no */
} tarn_evolution_requirement;

/* Metamodels, hops and requirements, in an order that is that of every answer. What is added is
 * copied. */
typedef struct tarn_evolution_rows tarn_evolution_rows;

/* NULL when memory is short. */
TARN_EVOLUTION_API tarn_evolution_rows* tarn_evolution_rows_new(void);
TARN_EVOLUTION_API void tarn_evolution_rows_free(tarn_evolution_rows* rows);

/* `semver` is what a text version stands for among the semantic versions, or NULL. The dependencies
 * keep their order. What cannot be added leaves the rows as they were. */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_rows_add_metamodel(
    tarn_evolution_rows* rows, const char* name, const char* version, const char* semver,
    const tarn_evolution_dependency* dependencies, size_t dependency_count, char** message);
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_rows_add_hop(tarn_evolution_rows* rows,
                                                                     const tarn_evolution_hop* hop,
                                                                     char** message);
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_rows_add_requirement(
    tarn_evolution_rows* rows, const tarn_evolution_requirement* requirement, char** message);

/* ---- Catalogues ---- */

/* Something that can be asked: a catalogue file, rows, or what callbacks answer. It keeps what it
 * has linked and the paths that it has found. */
typedef struct tarn_evolution_catalogue tarn_evolution_catalogue;

/* Opens a catalogue file: a JSON file, read as a whole, or a SQLite store, read on demand and seen
 * as it is at this moment. */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_open(const char* file,
                                                             tarn_evolution_catalogue** catalogue,
                                                             char** message);

/* A catalogue of the rows, which are copied and stay the caller's. Refuses an unsound one: with a
 * version that stands twice, or a dependency, hop or requirement of what is not there. What is
 * required need not be there. Of dependencies that lead back to the version that has them, it
 * makes requirements. Places in the message count from zero: "/hops/2" is the third hop. */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_open_rows(
    const tarn_evolution_rows* rows, tarn_evolution_catalogue** catalogue, char** message);

/* What a host answers that has data of its own. A callback returns zero, or anything else when it
 * fails; then the question fails with TARN_EVOLUTION_CALLBACK_FAILED. Questions from several
 * threads call it from several threads at the same time. It must not ask the same catalogue.
 *
 * Rows are added with the functions above, for the name asked for; the catalogue must be as sound
 * as `tarn_evolution_open_rows` says, and no version may depend on itself: that is for
 * requirements. Rows beyond what was asked for are passed over, so that a host may add all that it
 * has of the name. An addition that fails makes the question fail. */
typedef struct tarn_evolution_callbacks {
  size_t size; /* sizeof(tarn_evolution_callbacks) */
  void* data;  /* handed to each */

  /* Adds the metamodels of a name whose version, or what it stands for, lies in any of the ranges,
   * in the preferred order, with their requirements unless `find_requirements` adds these; all of
   * the name where there are none, and `ranges` is NULL. */
  int32_t (*find_metamodels)(void* data, const char* name, const tarn_evolution_range* ranges,
                             size_t range_count, tarn_evolution_rows* rows);

  /* Adds the hops of a name that lead away from version `from`; all of the name where it is NULL.
   */
  int32_t (*find_hops)(void* data, const char* name, const char* from, tarn_evolution_rows* rows);

  /* Calls `add` with `names` for each name of a metamodel. May be NULL: then explanations suggest
   * no names for those that are not known. */
  int32_t (*list_names)(void* data, void (*add)(void* names, const char* name), void* names);

  /* Called once, when the catalogue is freed. May be NULL. */
  void (*release)(void* data);

  /* Adds the requirements of a version, when it is linked. May be NULL: then they are those that
   * `find_metamodels` adds. */
  int32_t (*find_requirements)(void* data, const char* name, const char* version,
                               tarn_evolution_rows* rows);
} tarn_evolution_callbacks;

/* Where this fails, `release` is not called. */
TARN_EVOLUTION_API tarn_evolution_status
tarn_evolution_open_callbacks(const tarn_evolution_callbacks* callbacks,
                              tarn_evolution_catalogue** catalogue, char** message);

/* NULL is fine, as for all that frees. */
TARN_EVOLUTION_API void tarn_evolution_catalogue_free(tarn_evolution_catalogue* catalogue);

/* Forgets every path found: to be called when the hops that callbacks answer have changed, while
 * nobody asks. The metamodels of a catalogue must not change. */
TARN_EVOLUTION_API void tarn_evolution_forget_paths(tarn_evolution_catalogue* catalogue);

/* ---- Limits ---- */

/* Ends questions from another thread. One stop may stand in the limits of any
 * number of questions; once requested, it ends all of them and those that are asked later. */
typedef struct tarn_evolution_stop tarn_evolution_stop;

/* NULL when memory is short. */
TARN_EVOLUTION_API tarn_evolution_stop* tarn_evolution_stop_new(void);
TARN_EVOLUTION_API void tarn_evolution_stop_request(tarn_evolution_stop* stop);

/* Questions that were asked with it may still run: they are then not stopped any more. */
TARN_EVOLUTION_API void tarn_evolution_stop_free(tarn_evolution_stop* stop);

/* How far a search has come. A search goes on to the next stage when the work is too much for one.
 */
typedef struct tarn_evolution_progress {
  size_t size;
  int32_t stage;         /* 0 preparing, 1 exhaustive, 2 goal-directed, 3 learning */
  int32_t is_found;      /* whether a plan is known, of which it is open whether it is the best */
  uint64_t least_found;  /* its weight */
  uint64_t least_proven; /* no path weighs less */
} tarn_evolution_progress;

/* Steps: a path, whose steps follow one another, or those that can be taken next, of which each is
 * an alternative. Never changes, and does not need the catalogue any more. */
typedef struct tarn_evolution_steps tarn_evolution_steps;

/* What a question may take. Limits are looked at wherever the library itself computes, at least
 * every 50 ms on a machine that is not overloaded; while a callback runs, nobody looks. */
typedef struct tarn_evolution_limits {
  size_t size;                     /* sizeof(tarn_evolution_limits) */
  int64_t timeout_ms;              /* from the call on; negative: none */
  uint64_t memory;                 /* bytes beside what is linked, within a factor of two; 0: any */
  const tarn_evolution_stop* stop; /* or NULL */

  /* Told when the stage or one of the bounds has changed; returns zero to go on, anything else to
   * stop. May be NULL. */
  int32_t (*on_progress)(void* data, const tarn_evolution_progress* progress);
  void* data;

  /* Told each path that `tarn_evolution_find_path` meets before it knows the answer and that weighs
   * less than those told before; not proven least. The path is valid during the call. Returns zero
   * to go on, anything else to stop. May be NULL: making these paths takes time. */
  int32_t (*on_better_path)(void* data, const tarn_evolution_steps* path);
} tarn_evolution_limits;

/* To begin with: `tarn_evolution_limits limits = TARN_EVOLUTION_NO_LIMITS;` */
#define TARN_EVOLUTION_NO_LIMITS \
  { sizeof(tarn_evolution_limits), -1, 0, NULL, NULL, NULL, NULL }

/* ---- Questions ---- */

typedef int32_t tarn_evolution_format;

enum {
  TARN_EVOLUTION_JSON = 0,
  TARN_EVOLUTION_TEXT = 1, /* lines for people */
  TARN_EVOLUTION_SVG = 2,  /* the last four show paths only */
  TARN_EVOLUTION_HTML = 3,
  TARN_EVOLUTION_DOT = 4,
  TARN_EVOLUTION_MERMAID = 5
};

enum { TARN_EVOLUTION_FORWARD = 0, TARN_EVOLUTION_BACKWARD = 1, TARN_EVOLUTION_ANY_DIRECTION = 2 };

/* The path of least weight from one selection to another: TARN_EVOLUTION_OK, or
 * TARN_EVOLUTION_NO_PATH with `*path` NULL. Without steps where there is nothing to do. `limits`
 * may be NULL. */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_find_path(
    tarn_evolution_catalogue* catalogue, const tarn_evolution_named_version* from,
    size_t from_count, const tarn_evolution_named_version* to, size_t to_count,
    const tarn_evolution_limits* limits, tarn_evolution_steps** path, char** message);

/* The direction in which that path is looked for: forward or backward where all metamodels that
 * move from one selection to the other move so, and any otherwise; TARN_EVOLUTION_NO_PATH where a
 * selection is not consistent. */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_find_direction(
    tarn_evolution_catalogue* catalogue, const tarn_evolution_named_version* from,
    size_t from_count, const tarn_evolution_named_version* to, size_t to_count,
    const tarn_evolution_limits* limits, int32_t* direction, char** message);

/* Every step that leaves the selection in a direction; TARN_EVOLUTION_NO_PATH where the selection
 * is not consistent. Fails before the first is tried when there are more than `most` combinations
 * of hops: each metamodel that can move doubles their number or more. Takes no limits and cannot be
 * stopped: `most` alone bounds the time. */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_find_steps(
    tarn_evolution_catalogue* catalogue, const tarn_evolution_named_version* at, size_t at_count,
    int32_t direction, uint64_t most, tarn_evolution_steps** steps, char** message);

/* Why there is no path, and how near one can get, or that there is one: as JSON or text, to be
 * released with `tarn_evolution_free`. Puts at most `budget` questions about parts of the
 * question to the path finder (400 is usual); the limits are those of all of them together.
 *
 * The JSON is {"kind", ...}, where the kind is "path", "unknown", "inconsistent", "missing-chain",
 * "against-direction", "never-together" or "path-beside-unlinkable". */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_explain(
    tarn_evolution_catalogue* catalogue, const tarn_evolution_named_version* from,
    size_t from_count, const tarn_evolution_named_version* to, size_t to_count, uint64_t budget,
    const tarn_evolution_limits* limits, tarn_evolution_format format, char** explanation,
    char** message);

enum { TARN_EVOLUTION_NOTE = 0, TARN_EVOLUTION_WARNING = 1, TARN_EVOLUTION_ERROR = 2 };

/* All that is wrong with a catalogue file, sound or not, as JSON: {"catalogue", "errors",
 * "warnings", "notes", "findings": [{"code", "severity", "place", "message", "related"}]}. What is
 * less severe than `least` is only counted. Faults of the catalogue do not make it fail, unless
 * the file cannot be opened. */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_check(const char* file, int32_t least,
                                                              char** findings, char** message);

/* ---- Steps ---- */

/* Texts and structures are those of the steps, valid until these are freed. A number that is out of
 * range has no moves and weighs zero; NULL steps are as none. */
TARN_EVOLUTION_API void tarn_evolution_steps_free(tarn_evolution_steps* steps);
TARN_EVOLUTION_API size_t tarn_evolution_step_count(const tarn_evolution_steps* steps);

/* Of all steps of a path; of alternatives the sum, which means nothing. */
TARN_EVOLUTION_API uint64_t tarn_evolution_steps_weight(const tarn_evolution_steps* steps);
TARN_EVOLUTION_API uint64_t tarn_evolution_step_weight(const tarn_evolution_steps* steps,
                                                       size_t step);

/* The hops that a step takes together, by ascending name. */
TARN_EVOLUTION_API const tarn_evolution_hop* tarn_evolution_step_hops(
    const tarn_evolution_steps* steps, size_t step, size_t* count);

/* What a step brings in by links, not held before, by ascending name. */
TARN_EVOLUTION_API const tarn_evolution_named_version* tarn_evolution_step_brought_in(
    const tarn_evolution_steps* steps, size_t step, size_t* count);

/* The steps as a text, to be released with `tarn_evolution_free`. A path as JSON is the plan that
 * `evopath path --json` prints: {"form": 1, "found": true, "question", "weight", "start", "end",
 * "steps": [{"weight", "hops": [{"name", "from", "to", "expensive"}], "broughtIn": [{"name",
 * "version"}], "ties", "bundles"}]}, described by data/plan.schema.json of the sources.
 * Alternatives: {"baselines": [{"metamodels": {name: version}, "steps": [{"direction", "weight",
 * "hops", "broughtIn"}]}]}, the direction being "forward", "backward" or "mixed". */
TARN_EVOLUTION_API tarn_evolution_status tarn_evolution_steps_render(
    const tarn_evolution_steps* steps, tarn_evolution_format format, char** text, char** message);

#ifdef __cplusplus
}
#endif

#endif
