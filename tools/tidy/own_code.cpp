// A plug-in of clang-tidy that makes its checks visit this project's declarations only. Without it they visit those of
// all included system headers too, whose findings clang-tidy leaves out afterwards: two thirds of the time.
// tools/tidy.sh builds and loads it; the check named below does the work and reports nothing itself.

#include <vector>

#include "clang-tidy/ClangTidyCheck.h"
#include "clang-tidy/ClangTidyModule.h"
#include "clang-tidy/ClangTidyModuleRegistry.h"
#include "clang/AST/ASTContext.h"
#include "clang/ASTMatchers/ASTMatchFinder.h"

namespace {

namespace matchers = clang::ast_matchers;
namespace tidy = clang::tidy;

class OwnCode : public tidy::ClangTidyCheck
{
public:
    using ClangTidyCheck::ClangTidyCheck;

    void registerMatchers(matchers::MatchFinder* finder) override
    {
        finder->addMatcher(matchers::translationUnitDecl(), this);
    }

    // The translation unit is matched before its declarations are visited, so that the scope set here is the one that
    // all checks get.
    void check(const matchers::MatchFinder::MatchResult& result) override
    {
        std::vector<clang::Decl*> own;
        for (clang::Decl* declaration : result.Context->getTranslationUnitDecl()->decls()) {
            if (!result.SourceManager->isInSystemHeader(declaration->getLocation())) {
                own.push_back(declaration);
            }
        }
        result.Context->setTraversalScope(own);
    }
};

class OwnCodeModule : public tidy::ClangTidyModule
{
    void addCheckFactories(tidy::ClangTidyCheckFactories& factories) override
    {
        factories.registerCheck<OwnCode>("quarrynet-own-code");
    }
};

const tidy::ClangTidyModuleRegistry::Add<OwnCodeModule> registration("quarrynet", "visits own declarations only");

} // namespace
