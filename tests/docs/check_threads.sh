#!/bin/sh
# Checks that the headers say which threads may use each exported class and function: any thread; any thread,
# locks something; caller serialises. For a class, the "Class contract:" says it. For a function, its "@par
# Threads" says it, or that of its group, or the "// Threads:" of the file.
#
# usage: check_threads.sh SOURCE_FOLDER
awk '
function complain(what) {
    print FILENAME ":" FNR ": " what ": " $0
    status = 1
}
FNR == 1 { ofFile = comment = "" }
/^\/\/ Threads: / { ofFile = $0 }
/^$/ { comment = "" }
/^ *\/\/\// { comment = comment $0 }
/(Class contract:|@par Threads|\/\/ Threads:)/ &&
    !/(Class contract:|@par Threads |\/\/ Threads:) ([Aa]ny thread[.,;]|[Cc]aller serialises)/ {
    complain("does not use one of the three phrases")
}
/^(class|struct) MENSOR(_CHECKED|_CODES)?_API/ && !/;$/ && comment !~ /Class contract:/ && ofFile == "" {
    complain("has no class contract")
}
/^MENSOR(_CHECKED|_CODES)?_API/ && comment !~ /@par Threads/ && ofFile == "" {
    complain("does not say which threads may call it")
}
END { exit status }
' "$1"/src/mensor/*.h "$1"/src/mensor_checked/*.h "$1"/src/mensor_codes/*.h
