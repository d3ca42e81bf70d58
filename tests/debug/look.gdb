# Prints what the program tests/debug/printed_values.cpp has made.
set debuginfod enabled off
set width 0
set print pretty on
set print elements 200

define see
  echo $arg0 =\040
  output $arg0
  echo \n
end

echo ---\n
see values
see block
see list
see multi
see *record.root
see record
see *record.fields
see *multi.payload.multi
see *multi.payload.multi->nodes
see string
see buffer
see date
see noDate

see unknown
see lost
see circle
see lessThanNone
see tooMany
see badString
see badBuffer
see noColumn
see longText
set print elements 3
see many
set print elements unlimited
python print(gdb.parse_and_eval("many").format_string().count("tagLong 100000"), "of many are shown")
