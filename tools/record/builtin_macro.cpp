#include "builtin_macro.h"

#include <string>
#include <vector>

#include "clang/Basic/FileManager.h"
#include "clang/Lex/HeaderSearch.h"
#include "clang/Lex/Preprocessor.h"

namespace fe_db_tools {

namespace {

namespace tok = clang::tok;

bool isFound(const std::string& header, clang::Preprocessor& preprocessor) {
  const clang::HeaderSearch& search = preprocessor.getHeaderSearchInfo();
  for (auto directory = search.angled_dir_begin(); directory != search.search_dir_end();
       ++directory) {
    const std::string path = directory->getName().str() + '/' + header;
    if (preprocessor.getFileManager().getOptionalFileRef(path)) return true;
  }
  return false;
}

/// Clang answers this only in a directive. `question`: with the parentheses.
clang::Token answerOfHasInclude(llvm::ArrayRef<clang::Token> question,
                                clang::Preprocessor& preprocessor) {
  clang::Token answer;
  answer.startToken();
  if (question.size() < 5 || question[2].isNot(tok::less) ||
      question[question.size() - 2].isNot(tok::greater)) {
    return answer;
  }
  std::string header;
  for (const clang::Token& part : question.drop_front(3).drop_back(2)) {
    if (!header.empty() && part.hasLeadingSpace()) header += ' ';
    header += preprocessor.getSpelling(part);
  }
  answer.setKind(tok::numeric_constant);
  preprocessor.CreateString(isFound(header, preprocessor) ? "1" : "0", answer);
  return answer;
}

}  // namespace

clang::Token answerOf(llvm::ArrayRef<clang::Token> question, clang::Preprocessor& preprocessor) {
  const llvm::StringRef name = question.front().getIdentifierInfo()->getName();
  if (name == "__has_include") return answerOfHasInclude(question, preprocessor);
  clang::Token answer;
  answer.startToken();
  const bool isElsewhere = name == "__has_include_next" || name == "__has_embed";
  const bool isNamed = question.size() > 3 && (question[2].getIdentifierInfo() != nullptr ||
                                               question[2].is(tok::string_literal));
  if (isElsewhere || !isNamed) return answer;

  std::vector<clang::Token> text = question.vec();
  clang::Token end;
  end.startToken();
  end.setKind(tok::eof);
  end.setLocation(question.back().getLocation());
  text.push_back(end);
  preprocessor.EnterTokenStream(text, /*DisableMacroExpansion=*/false, /*IsReinject=*/true);
  preprocessor.Lex(answer);
  preprocessor.RemoveTopOfLexerStack();
  return answer;
}

}  // namespace fe_db_tools
