# Reads CTest's Testing/Temporary/LastTest.log and prints why GoogleTest cases
# were skipped, one line per reason, so a missing server is not a silent skip.
/^[0-9]+\/[0-9]+ Test: / { test = $3 }
/: Skipped$/ { reading = 1; reason = ""; next }
reading && /^\[  SKIPPED \]/ {
  reading = 0
  if (reason == "") reason = "no reason given"
  if (!(reason in count)) order[++reasons] = reason
  if (++count[reason] <= 3) names[reason] = names[reason] (count[reason] > 1 ? ", " : "") test
  next
}
reading && NF { reason = reason (reason == "" ? "" : " ") $0 }
END {
  if (reasons == 0) exit
  print "\nWhy tests were skipped:"
  for (i = 1; i <= reasons; i++) {
    r = order[i]
    more = count[r] > 3 ? sprintf(" and %d more", count[r] - 3) : ""
    printf "  %s (%s%s)\n", r, names[r], more
  }
}
