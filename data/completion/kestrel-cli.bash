# Completion of kestrel-cli for bash. The device names, without those that are not offered,
# are asked of the program itself.

_kestrel_cli() {
  local program=${COMP_WORDS[0]}
  local current=${COMP_WORDS[COMP_CWORD]}
  local previous=${COMP_WORDS[COMP_CWORD - 1]}
  local commands="devices detect read blank verify program erase display flash-id erase-buffer compare image save-project setups save-setup link-test safe"
  local options="-d -i -o --format --save-format --at --range --project --backup --protect --force --repeat --several --serial --report --json --simulate --model --lpt --chip --board-vpp --fault --port --setup --speed
    --vpp --lane --pad-ff --check --blank-check --verify --page --show --names --trace --waves --home --count-ns --algorithms -y --yes
    -q --quiet --select-port --force-model --version -h --help"
  COMPREPLY=()

  # "--chip 27C256=FILE" and "--port 378=DEVICE" reach this function split at the equals sign.
  if [[ $current == "=" ]]; then
    previous="=" current=""
  fi
  case $previous in
    -d | --chip)
      mapfile -t COMPREPLY < <(compgen -W "$("$program" devices --names 2>/dev/null)" -- "${current^^}")
      return ;;
    --format | --save-format)
      mapfile -t COMPREPLY < <(compgen -W "auto binary ihex srec tek tekx ti-txt ti-tagged ascii-hex mos emon52
        vmem" -- "$current")
      return ;;
    image)
      mapfile -t COMPREPLY < <(compgen -W "info fill copy swap reverse split join halve double checksum insert
        convert" -- "$current")
      return ;;
    -i | -o | --trace | --waves | --project | --report | save-project | info | =)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -f -- "$current")
      return ;;
    --home | --backup)
      compopt -o filenames
      mapfile -t COMPREPLY < <(compgen -d -- "$current")
      return ;;
    --algorithms)
      mapfile -t COMPREPLY < <(compgen -W "classic datasheet" -- "$current")
      return
      ;;
    --protect) mapfile -t COMPREPLY < <(compgen -W "keep on off" -- "$current"); return ;;
    --model | --force-model) mapfile -t COMPREPLY < <(compgen -W "4 5 6" -- "$current"); return ;;
    --lpt | --select-port) mapfile -t COMPREPLY < <(compgen -W "378 278 3BC" -- "$current"); return ;;
    --port)
      compopt -o nospace
      mapfile -t COMPREPLY < <(compgen -W "378= 278= 3BC=" -- "$current")
      return ;;
    --vpp | --board-vpp)
      mapfile -t COMPREPLY < <(compgen -W "12.5 21 25" -- "$current")
      return ;;
    --lane) mapfile -t COMPREPLY < <(compgen -W "all odd even" -- "$current"); return ;;
    --setup | save-setup) mapfile -t COMPREPLY < <(compgen -W "1 2 3 4" -- "$current"); return ;;
    --speed) mapfile -t COMPREPLY < <(compgen -W "{1..20}" -- "$current"); return ;;
    --fault)
      compopt -o nospace
      mapfile -t COMPREPLY < <(compgen -W "weak: stuck: unplug: empty" -- "$current")
      return ;;
    --page | --repeat | --count-ns | --at | --range | --serial) return ;;
  esac

  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    return
  fi
  local word
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    [[ " $commands " == *" $word "* ]] && return  # the command is there already
  done
  mapfile -t COMPREPLY < <(compgen -W "$commands" -- "$current")
}

complete -F _kestrel_cli kestrel-cli
