// A plugin for clang-tidy: its checks visit what this tree declares, and not the standard library that each source
// includes, where nothing is reported anyway. That is most of a source, and visiting it was most of the time.
#include <clang/AST/ASTConsumer.h>
#include <clang/AST/ASTContext.h>
#include <clang/Basic/SourceManager.h>
#include <clang/Frontend/FrontendPluginRegistry.h>

#include <memory>
#include <string>
#include <vector>

namespace {

class OwnDeclarations : public clang::ASTConsumer {
public:
    bool HandleTopLevelDecl(clang::DeclGroupRef group) override {
        for (clang::Decl *declaration : group)
            if (!declaration->getASTContext().getSourceManager().isInSystemHeader(declaration->getLocation()))
                own_.push_back(declaration);
        return true;
    }

    void HandleTranslationUnit(clang::ASTContext &context) override { context.setTraversalScope(own_); }

private:
    std::vector<clang::Decl *> own_;
};

/// Is run by itself before the checks, in each source.
class NarrowToOwnDeclarations : public clang::PluginASTAction {
protected:
    std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance &, llvm::StringRef) override {
        return std::make_unique<OwnDeclarations>();
    }
    bool ParseArgs(const clang::CompilerInstance &, const std::vector<std::string> &) override { return true; }
    ActionType getActionType() override { return AddBeforeMainAction; }
};

const clang::FrontendPluginRegistry::Add<NarrowToOwnDeclarations>
    kRegistered("own-declarations", "visit only what is declared outside system headers");

} // namespace
