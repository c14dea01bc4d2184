# Completion of tvrng in bash: commands, options as --help tells them, their values, files.
_tvrng() {
  local word=$2 previous=$3 command="" words=""
  COMPREPLY=()
  if ((COMP_CWORD > 1)); then
    case ${COMP_WORDS[1]} in stream | report | doctor) command=${COMP_WORDS[1]} ;; esac
  fi
  case $previous in
    --dist) words="uniform single normal integers" ;;
    --method) words="Ziggurat Polar Inversion" ;;
    --type) words="double single int8 uint8 int16 uint16 int32 uint32" ;;
    --format) words="text csv npy raw" ;;
    --generator | report)
      words=$("$1" --quiet -e "for name = RandStream.list()', print(name), end" 2>/dev/null) ;;
  esac
  case $word in
    -*) words=$("$1" ${command:+"$command"} --help | grep -oE -- '(^| )-(-[a-z]+|[a-z])\b' | sort -u) ;;
    *) [ "$COMP_CWORD" = 1 ] && words="stream report doctor" ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  ((${#COMPREPLY[@]})) || mapfile -t COMPREPLY < <(compgen -f -- "$word")
}
complete -o filenames -F _tvrng tvrng
