// What completions of shells ask for; hidden, for nobody types it.
#include <algorithm>
#include <memory>
#include <string>

#include "catalogue/open_catalogue.hpp"
#include "catalogue/picture/metamodel_details.hpp"
#include "catalogue/text/printed_text.hpp"
#include "catalogue/version_text.hpp"
#include "command.hpp"
#include "file_arguments.hpp"
#include "platform/text.hpp"
#include "text_output.hpp"

namespace evopath {

namespace catalogue = tarn::evolution::catalogue;

namespace {

struct WordsOptions {
  std::filesystem::path catalogue;
  std::string beginning;
  bool isSelection = false;
};

/// Whether shells take the text as it stands.
bool isPlain(const std::string& text) {
  return std::none_of(text.begin(), text.end(), [](char character) {
    return static_cast<unsigned char>(character) <= ' ' ||
           std::string("\"'`$&|;<>()[]{}*?!#~\\,").find(character) != std::string::npos;
  });
}

std::vector<std::string> versionsOf(catalogue::BrowsableRepository& repository,
                                    const std::string& name) {
  std::vector<std::string> words;
  const auto details = catalogue::describeMetamodel(repository, catalogue::parseName(name));
  for (const auto& version : details.versions) {
    words.push_back(name + "=" + catalogue::textOf(version.metamodel.descriptor.version));
  }
  return words;
}

std::vector<std::string> namesOf(catalogue::BrowsableRepository& repository,
                                 const std::string& ending) {
  std::vector<std::string> words;
  for (const std::u16string& name : repository.listNames()) {
    words.push_back(fl::i18n::ustring_to_utf8(name) + ending);
  }
  return words;
}

ExitStatus runWords(const WordsOptions& options) {
  if (!std::filesystem::is_regular_file(options.catalogue)) return ExitStatus::NoPath;
  const auto repository = catalogue::openCatalogue(options.catalogue);
  const std::size_t separator = options.beginning.find('=');
  const auto words = separator == std::string::npos
                         ? namesOf(*repository, options.isSelection ? "=" : "")
                         : versionsOf(*repository, options.beginning.substr(0, separator));
  std::string text;
  for (const std::string& word : words) {
    if (word.starts_with(options.beginning) && isPlain(word)) text += word + "\n";
  }
  writeToStandardOutput(text);
  return ExitStatus::Found;
}

}  // namespace

void addWordsCommand(CLI::App& program, Action& action) {
  const auto options = std::make_shared<WordsOptions>();
  CLI::App* words = program.add_subcommand("words", "List what a word can become")->group("");
  addFileArgument(*words, "catalogue", options->catalogue, "The catalogue");
  words->add_option("beginning", options->beginning, "Of a name, or NAME= and that of a version");
  words->add_flag("--selection", options->isSelection, "End names with an equals sign");
  words->callback([options, &action] { action = [options] { return runWords(*options); }; });
}

}  // namespace evopath
