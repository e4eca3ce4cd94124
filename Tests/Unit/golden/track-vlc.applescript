tell application "VLC"
  try
    if (exists current item) then return "true"
  end try
end tell
return "false"
