// hbbtvctl completion: prints the completion script of a shell. The scripts run `hbbtvctl complete`.
#include <CLI/App.hpp>
#include <cstdio>
#include <memory>

#include "cli/self_description.h"
#include "common/failure.h"

namespace hbbtv::ctl {

namespace {

constexpr const char* kBash = R"(# bash completion of hbbtvctl: source it, or install it for bash-completion.
_hbbtvctl() {
    local line=${COMP_LINE:0:COMP_POINT} piece word candidate
    local -a words=()
    # Bash splits words at "=" and ":". Join what no blank separates.
    for piece in "${COMP_WORDS[@]:0:COMP_CWORD+1}"; do
        if [[ ${#words[@]} -eq 0 || $line == [[:space:]]* || -z $line ]]; then
            words+=("")
            line=${line#"${line%%[![:space:]]*}"}
        fi
        piece=${line:0:${#piece}}
        words[-1]+=$piece
        line=${line:${#piece}}
    done
    word=${words[-1]}
    COMPREPLY=()
    # Bash replaces only what follows the "=".
    local prefix=""
    [[ $word == *=* && $COMP_WORDBREAKS == *=* ]] && prefix=${word%"${word##*=}"}
    while IFS=$'\t' read -r candidate _; do
        COMPREPLY+=("${candidate#"$prefix"}")
    done < <(hbbtvctl complete -- "${words[@]:1}" 2>/dev/null)
    if [[ ${#COMPREPLY[@]} -eq 1 && ${COMPREPLY[0]} == *[.=] ]]; then
        compopt -o nospace
    fi
}
complete -o default -F _hbbtvctl hbbtvctl
)";

constexpr const char* kZsh = R"(#compdef hbbtvctl
# zsh completion of hbbtvctl: install it as _hbbtvctl in a directory of $fpath, or source it after compinit.
_hbbtvctl() {
    local candidate hint
    local -a plain open plain_hints open_hints
    while IFS=$'\t' read -r candidate hint; do
        if [[ $candidate == *[.=] ]]; then
            open+=("$candidate") open_hints+=("$candidate  $hint")
        else
            plain+=("$candidate") plain_hints+=("$candidate  $hint")
        fi
    done < <(hbbtvctl complete -- "${(@)words[2,CURRENT]}" 2>/dev/null)
    (( $#plain )) && compadd -l -d plain_hints -a plain
    (( $#open )) && compadd -S '' -l -d open_hints -a open
    (( $#plain + $#open )) || _files
}
if [[ $funcstack[1] == _hbbtvctl ]]; then _hbbtvctl "$@"; else compdef _hbbtvctl hbbtvctl; fi
)";

constexpr const char* kFish =
    R"(# fish completion of hbbtvctl: install it as ~/.config/fish/completions/hbbtvctl.fish, or source it.
function __hbbtvctl
    set -l words (commandline -opc) (commandline -ct)
    hbbtvctl complete -- $words[2..-1] 2>/dev/null
end
complete -c hbbtvctl -f -a '(__hbbtvctl)'
complete -c hbbtvctl -n '__fish_seen_argument -l directory' -F
)";

int PrintScript(const std::string& shell) {
    std::printf("%s", shell == "bash" ? kBash : shell == "zsh" ? kZsh : kFish);
    return kDone;
}

}  // namespace

void AddCompletion(CLI::App& app, Invocation& invocation) {
    auto shell = std::make_shared<std::string>();
    CLI::App* command = app.add_subcommand("completion", "Print the completion script for a shell");
    command->add_option("SHELL", *shell, "bash, zsh or fish")
        ->type_name("SHELL")
        ->required()
        ->check([](const std::string& name) {
            const bool known = name == "bash" || name == "zsh" || name == "fish";
            return known ? "" : "unknown shell \"" + name + "\": expected bash, zsh or fish";
        });
    command->footer(
        "Examples, in ~/.bashrc, ~/.zshrc (after compinit) and config.fish:\n"
        "  source <(hbbtvctl completion bash)\n"
        "  source <(hbbtvctl completion zsh)\n"
        "  hbbtvctl completion fish | source");
    command->callback([shell, &invocation] { invocation.run = [shell] { return PrintScript(*shell); }; });
}

}  // namespace hbbtv::ctl
