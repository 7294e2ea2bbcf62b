module Main (main) where

{- <@text:anchor#overview> -}
data Column = Column
  { title :: String
  , width :: Int
  }

defaultWidth :: Int
defaultWidth = 12 -- <@control:slider#width [15,17] {"min":1,"max":40}>

columns :: [Column]
columns = [Column "name" defaultWidth, Column "size" 8]

-- <@task#sum>
gaps = 2 * (length columns - 1)
total = sum (map width columns) + gaps {- <@output#total [0,5] {"format":"short"}> -}
-- <@task#sum>

main :: IO ()
main = putStrLn (unwords (map title columns) ++ ": " ++ show total)
-- <@appendix>
-- <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
