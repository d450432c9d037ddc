#include "product.h"

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace fe_db_tools {

Product productOf(const std::vector<std::string>& words) {
  static constexpr const char* kOtherwise[] = {"-E", "-M", "-MM", "-###", "-fsyntax-only", "-"};
  Product product;
  for (std::size_t i = 1; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (std::find(std::begin(kOtherwise), std::end(kOtherwise), word) != std::end(kOtherwise)) {
      product.isCompiled = false;
    } else if (word == "-c" || word == "-S") {
      product.hasPrograms = false;
      if (word == "-S") product.ending = ".s";
    } else if (word == "-o" && i + 1 < words.size()) {
      product.output = words[++i];
    } else if (word.starts_with("-o")) {
      product.output = word.substr(2);
    }
  }
  return product;
}

std::string objectName(const Product& product, const std::string& source) {
  if (!product.output.empty()) return product.output;
  return std::filesystem::path(source).stem().string() + product.ending;
}

std::string objectOf(const CompileCommand& command, const std::string& source) {
  const Product product = productOf(plainWords(command));
  if (!product.isCompiled || product.hasPrograms) return {};
  const std::filesystem::path path =
      std::filesystem::path(command.directory) / objectName(product, source);
  return path.lexically_normal().string();
}

}  // namespace fe_db_tools
