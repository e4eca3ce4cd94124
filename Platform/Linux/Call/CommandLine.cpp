#include "Platform/Linux/Call/CommandLine.h"

#include <cstddef>

#include "Engine/Utf8.h"
#include "Platform/Linux/Call/CallJson.h"

namespace tapdeck {
namespace {

/// Splits off the options; what is left are the method and its arguments.
std::vector<std::string> readOptions(const std::vector<std::string>& words, CommandLine& line) {
  std::vector<std::string> operands;
  bool optionsEnded = false;
  for (size_t at = 0; at < words.size(); ++at) {
    const std::string& word = words[at];
    // JSON numbers may begin with a minus sign, but only after the method.
    if (optionsEnded || !operands.empty() || !word.starts_with("-")) {
      operands.push_back(word);
    } else if (word == "--") {
      optionsEnded = true;
    } else if (word == "--help" || word == "-h") {
      line.help = true;
    } else if (word == "--listen") {
      line.listen = true;
    } else if (word == "--channel" && at + 1 < words.size()) {
      line.channel = words[++at];
    } else if (word.starts_with("--channel=")) {
      line.channel = word.substr(std::string("--channel=").size());
    } else {
      throw std::invalid_argument(word == "--channel" ? "--channel needs a name."
                                                      : "There is no option " + word + ".");
    }
  }
  return operands;
}

}  // namespace

CommandLine parseCommandLine(const std::vector<std::string>& words) {
  CommandLine line;
  const auto operands = readOptions(words, line);
  if (line.help) return line;
  if (line.listen) {
    if (!operands.empty()) throw std::invalid_argument("--listen takes no method.");
    return line;
  }
  if (operands.empty()) throw std::invalid_argument("Which method?");
  if (operands.size() > 2) {
    throw std::invalid_argument("Too many words; put the arguments into one, in quotes.");
  }
  line.method = operands[0];
  if (!isUtf8(line.method) || !isUtf8(line.channel)) {
    throw std::invalid_argument("The names of methods and channels are UTF-8.");
  }
  if (operands.size() == 2) line.arguments = valueFromJson(operands[1]);
  return line;
}

}  // namespace tapdeck
