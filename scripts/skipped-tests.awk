# SPDX-License-Identifier: MIT
# Prints, from the log of a run of ctest, each test that was skipped, and why.

# "3/44 Testing: tst_failures"
/^[0-9]+\/[0-9]+ Testing: / {
    test = $3
    named = 0
}

# QtTest: "SKIP   : TestClass::function(row) reason"; once for all rows with the same reason
match($0, /^SKIP +: [^:]*::[^(]*\([^)]*\) /) {
    name = substr($0, 1, RLENGTH - 1)
    gsub(/^.*::|\(.*$/, "", name)
    print test " " name ": " substr($0, RLENGTH + 1)
}

# unittest: "test_name (module.Class.test_name) ... skipped 'reason'"
match($0, /^[A-Za-z0-9_]+ \([^)]*\) \.\.\. skipped ['"]/) {
    print test " " $1 ": " substr($0, RLENGTH + 1, length($0) - RLENGTH - 1)
    named = 1
}

# A whole test: add_skipped_test() of tests/CMakeLists.txt
/^SKIPPED: / {
    print test ": " substr($0, 10)
}

/^OK \(skipped=/ && !named {
    print test ": some of it, and unittest.main(verbosity=2) would say what"
}
