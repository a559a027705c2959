# Completion of snaplift-cli for bash; the program itself knows what can come next.

_snaplift_cli() {
  local word=${COMP_WORDS[COMP_CWORD]} quoted line what
  local given=("${COMP_WORDS[@]:1:COMP_CWORD}")
  COMPREPLY=()
  while IFS= read -r line; do
    if [[ $line == [/*] ]]; then # folders, or files as well
      compopt -o filenames 2>/dev/null
      [[ $line == / ]] && what=-d || what=-f
      mapfile -t COMPREPLY < <(compgen "$what" -- "$word")
      return
    fi
    line=${line%%$'\t'*}
    if [[ $word == [\"\']* ]]; then # bash closes the quotation, in which a name must be but text
      [[ $line == "${word:1}"* && $line != *[\"\'\\\$\`!]* ]] && COMPREPLY+=("$line")
    else
      printf -v quoted %q "$line"
      [[ $quoted == "$word"* ]] && COMPREPLY+=("$quoted")
    fi
  done < <("${COMP_WORDS[0]}" complete "${given[@]//[\\\"\']/}" 2>/dev/null)
}

complete -F _snaplift_cli snaplift-cli
