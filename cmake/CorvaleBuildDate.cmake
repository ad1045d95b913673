# Writes the header OUTPUT with the date of this build. Run by every build; the header changes with the
# day only. The date is English in every locale ("May  3 2024") and follows SOURCE_DATE_EPOCH.
string(TIMESTAMP today "%Y;%m;%d" UTC)
list(GET today 0 year)
list(GET today 1 month)
list(GET today 2 day)
set(months Jan Feb Mar Apr May Jun Jul Aug Sep Oct Nov Dec)
math(EXPR month_index "${month} - 1")
list(GET months ${month_index} month_name)
string(REGEX REPLACE "^0" " " day "${day}")
file(CONFIGURE OUTPUT "${OUTPUT}" CONTENT "#define CORVALE_BUILD_DATE \"${month_name} ${day} ${year}\"\n")
