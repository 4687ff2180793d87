#include "hosts/console/usage/completion_scripts.h"

namespace forgeyard::console {

namespace {

// The answer's first line says what is to be completed. Words follow as Bash is to insert them, with the
// blank or quote that ends them; for files the name that is begun follows.
constexpr std::string_view kBash = R"--(# Completion of forgeyard for bash.
# For now:      source <(forgeyard completion bash)
# For good:     forgeyard completion bash > ~/.local/share/bash-completion/completions/forgeyard

_forgeyard() {
  local program=${COMP_WORDS[0]}
  [[ $program != "~/"* ]] || program=$kHome/${program:2}
  local -a answer
  mapfile -t answer < <("$program" complete bash "${COMP_LINE:0:COMP_POINT}" 2>/dev/null)
  COMPREPLY=()
  case ${answer[0]-} in
    words)
      COMPREPLY=("${answer[@]:1}")
      compopt -o nospace
      ;;
    files)
      # Nothing of ours: the shell's own completion of file names.
      compopt -o default
      ;;
    projects)
      mapfile -t COMPREPLY < <(compgen -f -X '!*.nqp' -- "${answer[1]}"; compgen -d -- "${answer[1]}")
      compopt -o filenames
      ;;
    directories)
      mapfile -t COMPREPLY < <(compgen -d -- "${answer[1]}")
      compopt -o filenames
      ;;
  esac
}
complete -F _forgeyard forgeyard
)--";

constexpr std::string_view kZsh = R"--(#compdef forgeyard
# Completion of forgeyard for zsh.
# For now:      source <(forgeyard completion zsh)
# For good:     forgeyard completion zsh > DIRECTORY/_forgeyard, with a DIRECTORY of fpath

_forgeyard() {
  local line="${(j: :)words[1,CURRENT-1]} $QIPREFIX$PREFIX" entry
  local -a answer values shown openValues openShown
  answer=("${(@f)$(${~words[1]} complete zsh $line 2>/dev/null)}")
  case $answer[1] in
    files | projects | directories)
      compset -P '--*='
      ;;
  esac
  case $answer[1] in
    files) _files ;;
    projects) _files -g '*.nqp' ;;
    directories) _files -/ ;;
    words)
      for entry in "${(@)answer[2,-1]}"; do
        local value=${entry%%$'\t'*} help=${entry#*$'\t'}
        local display="$value${help:+  -- $help}"
        if [[ $value == *[=/] ]]; then
          openValues+=("$value") openShown+=("$display")
        else
          values+=("$value") shown+=("$display")
        fi
      done
      compadd -M 'm:{a-zA-Z}={A-Za-z}' -l -d shown -a values
      compadd -M 'm:{a-zA-Z}={A-Za-z}' -l -S '' -d openShown -a openValues
      ;;
  esac
}

if [[ $funcstack[1] == _forgeyard ]]; then
  _forgeyard "$@"
else
  compdef _forgeyard forgeyard
fi
)--";

constexpr std::string_view kFish = R"--(# Completion of forgeyard for fish.
# For now:      forgeyard completion fish | source
# For good:     forgeyard completion fish > ~/.config/fish/completions/forgeyard.fish

function __forgeyard_complete
    set -l program (commandline -opc)[1]
    set -l answer ($program complete fish (commandline -cp | string collect) 2>/dev/null)
    set -l word (commandline -ct)
    switch "$answer[1]"
        case words
            test (count $answer) -lt 2; or printf '%s\n' $answer[2..-1]
        case files
            __fish_complete_path $word
        case projects
            __fish_complete_suffix .nqp
        case directories
            __fish_complete_directories $word ''
    end
end
complete -c forgeyard -f -a '(__forgeyard_complete)'
)--";

}  // namespace

std::string_view completionScript(Shell shell) {
  switch (shell) {
    case Shell::Bash:
      return kBash;
    case Shell::Zsh:
      return kZsh;
    case Shell::Fish:
      break;
  }
  return kFish;
}

}  // namespace forgeyard::console
