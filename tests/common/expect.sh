# Shared by the shell tests of the tarnwick program: source it, call expect
# for each case, and end with `summary`.
passed=0 failed=0

# expect NAME STATUS OUTPUT-PATTERN COMMAND...: the exit status, and a line
# of standard output and error together that matches the extended regular
# expression. With "=" before it, the pattern is instead the whole output.
expect() {
  local name=$1 status=$2 pattern=$3
  shift 3
  local output actual
  output=$("$@" 2>&1)
  actual=$?
  if [ "$actual" -eq "$status" ] &&
    { [ "${pattern:0:1}" = "=" ] && [ "$output" = "${pattern:1}" ] || grep -qE -- "$pattern" <<<"$output"; }; then
    passed=$((passed + 1))
  else
    failed=$((failed + 1))
    printf 'FAILED %s: status %s (wanted %s), output:\n%s\n' "$name" "$actual" "$status" "$output"
  fi
}

summary() {
  echo "$passed passed, $failed failed"
  [ "$failed" -eq 0 ]
}
