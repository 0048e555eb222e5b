/* A host in C: asks a catalogue file, and answers questions about data of its own. */
#include <stdio.h>
#include <string.h>

#include "tarn_evolution_catalogue.h"

/* Prints what went wrong, if anything did, and releases the message. */
static int failed(tarn_evolution_status status, char** message) {
  if (status >= 0) return 0;
  fprintf(stderr, "%s: %s\n", tarn_evolution_status_name(status), *message ? *message : "");
  tarn_evolution_free(*message);
  return 1;
}

static void print_path(const tarn_evolution_steps* path) {
  size_t step, i, count;
  for (step = 0; step < tarn_evolution_step_count(path); ++step) {
    const tarn_evolution_hop* hops = tarn_evolution_step_hops(path, step, &count);
    printf("step %u:", (unsigned)step + 1);
    for (i = 0; i < count; ++i) printf(" %s %s->%s", hops[i].name, hops[i].from, hops[i].to);
    printf("\n");
  }
  printf("weight %u\n", (unsigned)tarn_evolution_steps_weight(path));
}

/* Ends a search that has proven the path to be long. */
static int32_t refuse_long_paths(void* data, const tarn_evolution_progress* progress) {
  return progress->least_proven > *(const uint64_t*)data;
}

static int ask_file(const char* file) {
  static const tarn_evolution_named_version from[] = {{"limitador-operator", "0.6.0"}};
  static const tarn_evolution_named_version to[] = {{"limitador-operator", "0.8.0"}};
  uint64_t most = 1000;
  tarn_evolution_limits limits = TARN_EVOLUTION_NO_LIMITS;
  tarn_evolution_catalogue* catalogue;
  tarn_evolution_steps* path;
  char* message;
  char* explanation;
  if (failed(tarn_evolution_open(file, &catalogue, &message), &message)) return 1;
  limits.timeout_ms = 60000;
  limits.on_progress = refuse_long_paths;
  limits.data = &most;
  if (failed(tarn_evolution_find_path(catalogue, from, 1, to, 1, &limits, &path, &message),
             &message)) {
    tarn_evolution_catalogue_free(catalogue);
    return 1;
  }
  print_path(path);
  tarn_evolution_steps_free(path);

  /* The way back is none. */
  if (tarn_evolution_find_path(catalogue, to, 1, from, 1, NULL, &path, NULL) ==
          TARN_EVOLUTION_NO_PATH &&
      !failed(tarn_evolution_explain(catalogue, to, 1, from, 1, 400, NULL, TARN_EVOLUTION_TEXT,
                                     &explanation, &message),
              &message)) {
    printf("%s", explanation);
    tarn_evolution_free(explanation);
  }
  tarn_evolution_catalogue_free(catalogue);
  return 0;
}

/* Data of the host's own: shapes, and drawings that are made of them. */
static int32_t find_metamodels(void* data, const char* name, const tarn_evolution_range* ranges,
                               size_t range_count, tarn_evolution_rows* rows) {
  static const tarn_evolution_range range1 = {"1.0.0", "2.0.0"};
  static const tarn_evolution_range range2 = {"2.0.0", "3.0.0"};
  static const tarn_evolution_dependency shape1 = {"shape", &range1, 1};
  static const tarn_evolution_dependency shape2 = {"shape", &range2, 1};
  (void)data;
  (void)ranges; /* what does not lie in them is passed over */
  (void)range_count;
  if (strcmp(name, "shape") == 0) {
    return tarn_evolution_rows_add_metamodel(rows, name, "1.0.0", NULL, NULL, 0, NULL) != 0 ||
           tarn_evolution_rows_add_metamodel(rows, name, "2.0.0", NULL, NULL, 0, NULL) != 0;
  }
  if (strcmp(name, "drawing") == 0) {
    return tarn_evolution_rows_add_metamodel(rows, name, "1.0.0", NULL, &shape1, 1, NULL) != 0 ||
           tarn_evolution_rows_add_metamodel(rows, name, "2.0.0", NULL, &shape2, 1, NULL) != 0;
  }
  return 0;
}

static int32_t find_hops(void* data, const char* name, const char* from,
                         tarn_evolution_rows* rows) {
  tarn_evolution_hop hop = {NULL, "1.0.0", "2.0.0", 0};
  (void)data;
  (void)from;
  hop.name = name;
  return tarn_evolution_rows_add_hop(rows, &hop, NULL);
}

static int ask_own_data(void) {
  static const tarn_evolution_named_version from[] = {{"drawing", "1.0.0"}};
  static const tarn_evolution_named_version to[] = {{"drawing", "2.0.0"}};
  tarn_evolution_callbacks callbacks = {
      .size = sizeof callbacks, .find_metamodels = find_metamodels, .find_hops = find_hops};
  tarn_evolution_catalogue* catalogue;
  tarn_evolution_steps* path;
  char* message;
  char* text;
  int result = 1;
  if (failed(tarn_evolution_open_callbacks(&callbacks, &catalogue, &message), &message)) return 1;
  if (!failed(tarn_evolution_find_path(catalogue, from, 1, to, 1, NULL, &path, &message),
              &message)) {
    if (!failed(tarn_evolution_steps_render(path, TARN_EVOLUTION_JSON, &text, &message),
                &message)) {
      printf("%s", text);
      tarn_evolution_free(text);
      result = 0;
    }
    tarn_evolution_steps_free(path);
  }
  tarn_evolution_catalogue_free(catalogue);
  return result;
}

int main(int argc, char** argv) {
  if (TARN_EVOLUTION_VERSION / 1000 != tarn_evolution_version() / 1000) return 1;
  return ask_file(argc > 1 ? argv[1] : "data/operators.json") || ask_own_data();
}
