tell application "VLC"
  try
    if not (exists current item) then return "none"
    set i to current item
    return (name of i) & tab & "" & tab & "" & tab ¬
      & ((duration of i) as text) & tab & ((current time) as text) & tab ¬
      & ((playing) as text) & tab & (path of i as text)
  on error
    return "none"
  end try
end tell
