#include "catalogue/c/steps_handle.hpp"

#include "catalogue/c/arguments.hpp"
#include "catalogue/c/boundary.hpp"
#include "catalogue/picture/path_dot.hpp"
#include "catalogue/picture/path_html.hpp"
#include "catalogue/picture/path_mermaid.hpp"
#include "catalogue/picture/path_svg.hpp"
#include "catalogue/picture/path_text.hpp"
#include "catalogue/text/printed_text.hpp"

using namespace tarn::evolution::catalogue;
using namespace tarn::evolution::catalogue::c;

namespace {

void write(const PathPlan& plan, tarn_evolution_format format, std::ostream& out) {
  switch (format) {
    case TARN_EVOLUTION_JSON:
      return writePlanJson(plan, out);
    case TARN_EVOLUTION_TEXT:
      return writePathText(plan.picture, Colouring::Plain, out);
    case TARN_EVOLUTION_SVG:
      return writePathSvg(plan.picture, out);
    case TARN_EVOLUTION_HTML:
      return writePathHtml(plan.picture, out);
    case TARN_EVOLUTION_DOT:
      return writePathDot(plan.picture, out);
    case TARN_EVOLUTION_MERMAID:
      return writePathMermaid(plan.picture, out);
    default:
      throw std::invalid_argument("format: " + std::to_string(format) + " is none");
  }
}

void write(const tarn_evolution_steps::Alternatives& listings, tarn_evolution_format format,
           std::ostream& out) {
  if (format == TARN_EVOLUTION_JSON) {
    writeStepsJson(listings, out);
  } else if (format == TARN_EVOLUTION_TEXT) {
    writeStepsText(listings, Colouring::Plain, out);
  } else {
    throw std::invalid_argument("format: " + std::to_string(format) +
                                " is none that shows alternatives");
  }
}

}  // namespace

tarn_evolution_steps::tarn_evolution_steps(Path plan) : shown_(std::move(plan)) {
  add(std::get<Path>(shown_).picture);
}

tarn_evolution_steps::tarn_evolution_steps(Alternatives listings) : shown_(std::move(listings)) {
  for (const StepListing& listing : std::get<Alternatives>(shown_)) {
    for (const StepListing::Group& group : listing.groups) add(group.picture);
  }
}

void tarn_evolution_steps::add(const PathPicture& picture) {
  for (const PathPicture::Step& shown : picture.steps) {
    Step& step = steps_.emplace_back();
    step.weight = shown.weight;
    for (const PathPicture::Move& move : shown.moves) {
      const char* const name = picture.lanes[move.lane].name.c_str();
      if (move.kind == PathPicture::MoveKind::Entering) {
        step.broughtIn.push_back({.name = name, .version = move.to.c_str()});
      } else {
        step.hops.push_back({.name = name,
                             .from = move.from.c_str(),
                             .to = move.to.c_str(),
                             .expensive = move.kind == PathPicture::MoveKind::Expensive});
      }
    }
  }
}

const tarn_evolution_steps::Step* tarn_evolution_steps::find(std::size_t number) const {
  return number < steps_.size() ? &steps_[number] : nullptr;
}

std::string tarn_evolution_steps::render(tarn_evolution_format format) const {
  return written([&](std::ostream& out) {
    std::visit([&](const auto& shown) { write(shown, format, out); }, shown_);
  });
}

namespace {

/// The items of one kind that a step has, and their number.
template <class Item>
const Item* itemsOf(const tarn_evolution_steps* steps, size_t number,
                    std::vector<Item> tarn_evolution_steps::Step::*items, size_t* count) {
  const auto* const step = steps == nullptr ? nullptr : steps->find(number);
  const bool hasAny = step != nullptr && !(step->*items).empty();
  if (count != nullptr) *count = hasAny ? (step->*items).size() : 0;
  return hasAny ? (step->*items).data() : nullptr;
}

}  // namespace

void tarn_evolution_steps_free(tarn_evolution_steps* steps) {
  delete steps;
}

size_t tarn_evolution_step_count(const tarn_evolution_steps* steps) {
  return steps == nullptr ? 0 : steps->steps().size();
}

uint64_t tarn_evolution_steps_weight(const tarn_evolution_steps* steps) {
  uint64_t sum = 0;
  for (size_t i = 0; i < tarn_evolution_step_count(steps); ++i) sum += steps->steps()[i].weight;
  return sum;
}

uint64_t tarn_evolution_step_weight(const tarn_evolution_steps* steps, size_t step) {
  const auto* const found = steps == nullptr ? nullptr : steps->find(step);
  return found == nullptr ? 0 : found->weight;
}

const tarn_evolution_hop* tarn_evolution_step_hops(const tarn_evolution_steps* steps, size_t step,
                                                   size_t* count) {
  return itemsOf(steps, step, &tarn_evolution_steps::Step::hops, count);
}

const tarn_evolution_named_version* tarn_evolution_step_brought_in(
    const tarn_evolution_steps* steps, size_t step, size_t* count) {
  return itemsOf(steps, step, &tarn_evolution_steps::Step::broughtIn, count);
}

tarn_evolution_status tarn_evolution_steps_render(const tarn_evolution_steps* steps,
                                                  tarn_evolution_format format, char** text,
                                                  char** message) {
  return answered(text, "text", message, [&] {
    *text = giveText(required(steps, "steps").render(format));
    return TARN_EVOLUTION_OK;
  });
}
