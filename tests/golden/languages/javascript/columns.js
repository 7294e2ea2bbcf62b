'use strict';

/* <@text:anchor#overview> */
const DEFAULT_WIDTH = 12; // <@control:slider#width [22,24] {"min":1,"max":40}>

class Column {
  constructor(title, width = DEFAULT_WIDTH) {
    this.title = title;
    this.width = width;
  }
}

const columns = [new Column('name'), new Column('size', 8), new Column('date')];
// <@task#sum>
const widths = columns.map((column) => column.width);
const total = widths.reduce((sum, width) => sum + width, 0); /* <@output#total [6,11] {"format":"short"}> */
// <@task#sum>
console.log(`${columns.length} columns, ${total} characters`);

module.exports = { Column, total };
// <@appendix>
// <@task#sum {"uniqueId":"sum-1","taskClassDefFile":"sum.json","text":"Add up the widths","run":"auto","collapsed":"false"}>
