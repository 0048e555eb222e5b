#include "path_format.hpp"

#include <map>

#include "catalogue/picture/path_dot.hpp"
#include "catalogue/picture/path_html.hpp"
#include "catalogue/picture/path_mermaid.hpp"
#include "catalogue/picture/path_script.hpp"
#include "catalogue/picture/path_svg.hpp"
#include "catalogue/picture/path_text.hpp"
#include "catalogue/text/printed_text.hpp"

namespace evopath {

namespace catalogue = tarn::evolution::catalogue;

void PathFormatOption::addTo(CLI::App& command) {
  static const std::map<std::string, PathFormat> byName{
      {"text", PathFormat::Text},      {"json", PathFormat::Json}, {"script", PathFormat::Script},
      {"html", PathFormat::Html},      {"svg", PathFormat::Svg},   {"dot", PathFormat::Dot},
      {"mermaid", PathFormat::Mermaid}};
  auto* formatOption =
      command
          .add_option_function<std::string>(
              "--format", [this](const std::string& name) { format = byName.at(name); },
              "How to show the path")
          ->type_name("FORMAT")
          ->check(CLI::IsMember(&byName));
  command
      .add_flag_callback(
          "--json", [this] { format = PathFormat::Json; }, "Short for --format json")
      ->excludes(formatOption);
  command
      .add_option("--template", scriptLine,
                  "The line of a script for each hop, in which {step}, {name}, {from}, {to} and "
                  "{expensive} are filled in")
      ->type_name("LINE")
      ->needs(formatOption);
}

void PathFormatOption::expectTemplate() const {
  if (format != PathFormat::Script) return;
  if (scriptLine.empty()) throw CLI::RequiredError("--template, with --format script,");
  catalogue::written([&](std::ostream& out) { catalogue::writePathScript({}, scriptLine, out); });
}

std::string renderPath(const catalogue::PathPicture& picture, const PathFormatOption& form,
                       catalogue::Colouring colouring) {
  return catalogue::written([&](std::ostream& out) {
    switch (form.format) {
      case PathFormat::Json:
        return;
      case PathFormat::Script:
        return catalogue::writePathScript(picture, form.scriptLine, out);
      case PathFormat::Text:
        if (!picture.steps.empty()) catalogue::writeStartText(picture, colouring, out);
        return catalogue::writePathText(picture, colouring, out);
      case PathFormat::Html:
        return catalogue::writePathHtml(picture, out);
      case PathFormat::Svg:
        return catalogue::writePathSvg(picture, out);
      case PathFormat::Dot:
        return catalogue::writePathDot(picture, out);
      case PathFormat::Mermaid:
        return catalogue::writePathMermaid(picture, out);
    }
  });
}

}  // namespace evopath
