#compdef snaplift-cli
# Completion of snaplift-cli for zsh; the program itself knows what can come next.

local line
local -a given=("${(@Q)words[2,CURRENT]}") candidates
for line in ${(f)"$(_call_program candidates ${words[1]} complete "${(@q)given}")"}; do
  if [[ $line == / ]]; then
    _files -/
    return
  elif [[ $line == '*' ]]; then
    _files
    return
  fi
  candidates+=("${${line%%$'\t'*}//:/\\:}:${line#*$'\t'}")
done
_describe 'snaplift-cli' candidates
