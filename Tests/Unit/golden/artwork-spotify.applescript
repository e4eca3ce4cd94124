tell application "Spotify"
  try
    return artwork url of current track
  on error
    return ""
  end try
end tell
