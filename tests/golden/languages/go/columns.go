// Package main adds up the widths of the columns of a table.
package main

import "fmt"

//<@text:anchor#overview>
const defaultWidth = 12 // <@control:slider#width [21,23] {"min":1,"max":40}>

type column struct {
	title string
	width int
}

func main() {
	columns := []column{{"name", defaultWidth}, {"size", 8}, {"date", defaultWidth}}
	total := 2 * (len(columns) - 1)
	// <@task#sum>
	for _, c := range columns {
		total += c.width /* <@output#total [2,7] {"format":"short"}> */
	} //<@task#sum>
	fmt.Printf("%d columns, %d characters\n", len(columns), total)
}

//<@appendix>
//<@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
